#ifndef FWFORMPRIVATE_H
#define FWFORMPRIVATE_H

// What the framework hands to FwForm::open: opaque to forms, which only pass it on.
class FwFormPrivate;

#endif // FWFORMPRIVATE_H
