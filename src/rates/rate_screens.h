#pragma once
// The screens of rates and special taxes, for the menu's catalog.

#include "rates/edit_special_taxes.h"
#include "rates/edit_special_taxpayers.h"
#include "rates/maintain_millages_county.h"
#include "rates/maintain_millages_school.h"
#include "rates/maintain_millages_township.h"
