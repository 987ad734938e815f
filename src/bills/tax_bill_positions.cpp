#include "bills/tax_bill_positions.h"

#include "reports/report_surface.h"

double PageInches(const ReportSurface& surface, double inches, PageAxis axis) {
    return axis == PageAxis::Across ? inches * surface.Width() / 8.5
                                    : inches * surface.Height() / 11.0;
}

double HalfOf(double value) {
    return value / 2.0;
}
