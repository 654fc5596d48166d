#ifndef FWSQLGLOBAL_H
#define FWSQLGLOBAL_H

#include <QtGlobal>

#if defined(FWSQL_BUILD_LIBRARY)
#define FWSQL_EXPORT Q_DECL_EXPORT
#else
#define FWSQL_EXPORT Q_DECL_IMPORT
#endif

#endif // FWSQLGLOBAL_H
