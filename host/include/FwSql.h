#ifndef FWSQL_H
#define FWSQL_H

// Every class of the framework's SQL layer.
#include "FwSqlGlobal.h"
#include "SQLDatabase.h"
#include "SQLQuery.h"

#endif // FWSQL_H
