#pragma once
// A report that reaches up into the bills: the include check must refuse it.
#include "bills/barcode.h"
