#include "core/value_functions.h"

#include "core/common_values.h"

#include <QVariant>

namespace {

std::optional<double> toNumber(const QString& text) {
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok); // C locale, whatever the machine's
    if (!ok)
        return std::nullopt;
    return value;
}

QVariant argumentValue(const QStringList& args) {
    if (args.isEmpty() || args.front() == QLatin1String("<null>"))
        return QVariant();
    return QVariant(args.front());
}

} // namespace

QString NumberText(double value) {
    if (value == 0)
        return QStringLiteral("0"); // also for -0
    return QString::number(value, 'g', 15);
}

std::optional<QString> CallValueFunction(const QString& name, const QStringList& args) {
    auto numberAndText = [&](auto&& function) -> std::optional<QString> {
        if (args.size() != 2)
            return std::nullopt;
        const auto value = toNumber(args[0]);
        if (!value)
            return std::nullopt;
        return function(*value, args[1]);
    };

    if (name == QLatin1String("RoundTo")) {
        if (args.size() != 2)
            return std::nullopt;
        const auto value = toNumber(args[0]);
        const auto places = toNumber(args[1]);
        if (!value || !places)
            return std::nullopt;
        return NumberText(RoundTo(*value, *places));
    }
    if (name == QLatin1String("PadFormat"))
        return numberAndText([](double v, QString pattern) { return PadFormat(v, pattern); });
    if (name == QLatin1String("FormatNumber"))
        return numberAndText([](double v, const QString& p) { return FormatNumber(v, p); });
    if (name == QLatin1String("FormatPercent"))
        return numberAndText([](double v, const QString& p) { return FormatPercent(v, p); });
    if (name == QLatin1String("FormatMoney")) {
        if (args.size() != 2)
            return std::nullopt;
        const auto amount = Money::parse(args[0]);
        if (!amount)
            return std::nullopt;
        return amount->format(args[1]);
    }
    if (name == QLatin1String("QuoteSql") || name == QLatin1String("ProperName")) {
        if (args.size() != 1)
            return std::nullopt;
        return name == QLatin1String("QuoteSql") ? QuoteSql(args[0]) : ProperName(args[0]);
    }
    if (name == QLatin1String("CountSeparators")) {
        if (args.size() != 2)
            return std::nullopt;
        return QString::number(CountSeparators(args[0], args[1]));
    }
    if (name == QLatin1String("NullToText") || name == QLatin1String("NullToZero")) {
        if (args.size() > 1)
            return std::nullopt;
        const QVariant value = argumentValue(args);
        return name == QLatin1String("NullToText") ? NullToText(value)
                                                   : NullToZero(value).toString();
    }
    return std::nullopt;
}
