// A mortgage company's file: every record is read whole or listed as malformed, numbered in
// file order, with its fields within their widths.
#include "desk/realestate/mortgage_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const MortgageFile file = ParseMortgageCompanyFile(bytes);
    std::vector<int> numbers;
    for (const MortgageRecord& r : file.records) {
        if (r.control.size() > MortgageControlLength || r.payor.size() > MortgagePayorLength ||
            r.checknum.size() > MortgageChecknumLength || r.amount < Money())
            std::abort();
        numbers.push_back(r.number);
    }
    for (const MalformedMortgageRecord& m : file.malformed) {
        if (m.problem.isEmpty())
            std::abort();
        numbers.push_back(m.number);
    }
    // No record counted twice, none numbered past the lines there are.
    std::sort(numbers.begin(), numbers.end());
    if (std::adjacent_find(numbers.begin(), numbers.end()) != numbers.end())
        std::abort();
    if (!numbers.empty() && (numbers.front() < 1 || numbers.back() > int(size)))
        std::abort();
    return 0;
}
