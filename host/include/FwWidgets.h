#ifndef FWWIDGETS_H
#define FWWIDGETS_H

// Every class of the framework's widgets library.
#include "FwApplication.h"
#include "FwEnums.h"
#include "FwForm.h"
#include "FwFormPrivate.h"
#include "FwLog.h"
#include "FwMainWindow.h"
#include "FwMenu.h"
#include "FwMenuBar.h"
#include "FwMessageBox.h"
#include "FwTextDocument.h"
#include "FwToolBar.h"
#include "FwWidgetsGlobal.h"

#endif // FWWIDGETS_H
