// A core test that reaches the main window: the include check must refuse it.
#include "app/main_window.h"
#include "core/money.h"
