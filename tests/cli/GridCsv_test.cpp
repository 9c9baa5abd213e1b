#include "cli/GridCsv.h"

#include <gtest/gtest.h>

using namespace yunqi;

// The golden statements hold a comma and quotes; line ends are quoted too.
TEST(GridCsvTest, QuotesOnlyWhatNeedsIt) {
    for (const auto& [field, csv] :
         std::vector<std::pair<QString, QString>>{{"plain 文本", "plain 文本"},
                                                  {"a,b", "\"a,b\""},
                                                  {"say \"hi\"", "\"say \"\"hi\"\"\""},
                                                  {"line\rbreak", "\"line\rbreak\""},
                                                  {"line\nbreak", "\"line\nbreak\""}})
        EXPECT_EQ(CsvField(field), csv) << field.toStdString();
}
