// An arrow that points up, for the test of the test.
#include "inventory/record.h"
