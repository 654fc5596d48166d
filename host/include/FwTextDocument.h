#ifndef FWTEXTDOCUMENT_H
#define FWTEXTDOCUMENT_H

#include "FwWidgetsGlobal.h"

#include <QTextDocument>

// A text document that takes text which may or may not be rich text.
class FWWIDGETS_EXPORT FwTextDocument : public QTextDocument
{
    Q_OBJECT

public:
    explicit FwTextDocument(QObject* parent = nullptr);
    ~FwTextDocument() override;

    // HTML when the text looks like rich text, else plain text with its line breaks kept.
    void setRichText(const QString& text);
};

#endif // FWTEXTDOCUMENT_H
