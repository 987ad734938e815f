#pragma once
// Placing the school statement on a letter page by inches: a value in inches across (8.5 to a
// sheet) or down (11 to a sheet) in the surface's twips, and half of a value for centring.

class ReportSurface;

enum class PageAxis { Across, Down };

// `inches` along the axis as the surface's units: its width over 8.5, or its height over 11.
double PageInches(const ReportSurface& surface, double inches, PageAxis axis);
// Half of `value`: what centring takes off a width.
double HalfOf(double value);
