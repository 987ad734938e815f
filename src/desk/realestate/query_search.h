#pragma once
// The search criteria of the real-estate query screens.

#include <QString>

// How many rows Search Forward and Search Backward move on a list.
inline constexpr int QueryPageRows = 250;

// A typed bill number as the lists find it: numeric text right-aligned in five ("####0"),
// any other text upper-cased; blank stays blank.
QString NormalizeQueryBillNo(const QString& typed);

// The map criterion: the three fields padded with blanks to 4, 3 and 5 characters and joined,
// to line up with Map3 & Map4 & Map5.
QString MapCriterion(const QString& map3, const QString& map4, const QString& map5);
