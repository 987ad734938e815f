// A county CSV file as the import reads it: records split by the reader, the first taken as the
// column names, every later field converted for a column of each kind the tables have.
#include "core/csv.h"
#include "utilities/duplicate_values.h"

#include <QByteArray>
#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using TaxDatabase::ColumnType;
    static const ColumnType kinds[] = {ColumnType::Text, ColumnType::Money, ColumnType::Integer,
                                       ColumnType::Real, ColumnType::Date,  ColumnType::Boolean};
    CsvReader reader(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    std::vector<CsvBytes> fields;
    std::vector<ColumnPlan> plans;
    while (reader.next(fields)) {
        if (plans.empty()) {
            for (std::size_t i = 0; i < fields.size(); ++i) {
                ColumnPlan plan;
                plan.name = fields[i].text();
                plan.type = kinds[i % std::size(kinds)];
                plan.rule = RuleOf(plan.name);
                plans.push_back(plan);
                MissingValue(plan);
            }
            continue;
        }
        for (std::size_t i = 0; i < fields.size() && i < plans.size(); ++i) {
            Bound value;
            ConvertCsvField(plans[i], fields[i], &value);
        }
    }
    // The record reader that makes texts goes over the same bytes.
    CsvReader again(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    while (again.next()) {
    }
    return 0;
}
