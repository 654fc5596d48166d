#ifndef FWWIDGETS_H
#define FWWIDGETS_H

// Every class of the framework's widgets library.
#include "FwApplication.h"
#include "FwDatePicker.h"
#include "FwDialog.h"
#include "FwEnums.h"
#include "FwForm.h"
#include "FwFormPrivate.h"
#include "FwGroupBox.h"
#include "FwLog.h"
#include "FwMainWindow.h"
#include "FwMenu.h"
#include "FwMenuBar.h"
#include "FwMessageBox.h"
#include "FwPtrColorPicker.h"
#include "FwPtrEdit.h"
#include "FwPushButton.h"
#include "FwTableBase.h"
#include "FwTableForm.h"
#include "FwTextDocument.h"
#include "FwToolBar.h"
#include "FwTreeWidget.h"
#include "FwTreeWidgetItem.h"
#include "FwWidgetsGlobal.h"

#endif // FWWIDGETS_H
