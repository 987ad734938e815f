#include "desk/realestate/query_search.h"

#include "core/common_values.h"

QString NormalizeQueryBillNo(const QString& typed) {
    if (typed.trimmed().isEmpty())
        return typed;
    bool numeric = false;
    const double value = typed.trimmed().toDouble(&numeric);
    if (numeric)
        return PadFormat(value, "####0");
    return typed.toUpper();
}

QString MapCriterion(const QString& map3, const QString& map4, const QString& map5) {
    return map3.leftJustified(4, QLatin1Char(' ')) + map4.leftJustified(3, QLatin1Char(' ')) +
           map5.leftJustified(5, QLatin1Char(' '));
}
