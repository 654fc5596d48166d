#include "FwTextDocument.h"

FwTextDocument::FwTextDocument(QObject* parent)
    : QTextDocument(parent)
{
}

FwTextDocument::~FwTextDocument() = default;

void FwTextDocument::setRichText(const QString& text)
{
    // Bookings carry either HTML or plain text with line breaks; HTML would swallow the breaks.
    if (Qt::mightBeRichText(text))
        setHtml(text);
    else
        setPlainText(text);
}
