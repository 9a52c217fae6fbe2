#ifndef HEADER_TEST_H
#define HEADER_TEST_H

#include <windows.h>

#include <driverinventory.h>

#ifdef __cplusplus
extern "C"
#endif
    driverinventory_options
    NoOptionsOfC(void);

#endif
