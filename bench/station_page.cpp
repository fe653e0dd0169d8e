// SPDX-License-Identifier: GPL-3.0-or-later
// Parsing a station's page, beside libxml2's HTML parser on the same bytes.
#include "datafiles/station_table.h"
#include "platform/text_encoding.h"
#include "ratios.h"

#include <benchmark/benchmark.h>

#include <libxml/HTMLparser.h>

namespace {

using namespace skyhold;

QByteArray stationPage(int rows) {
    QByteArray page = "<!DOCTYPE html>\r\n<html><head><title>Weather</title></head>\r\n<body>\r\n"
                      "<h1>Observatory</h1>\r\n<table border=\"1\" cellpadding=\"2\">\r\n"
                      "<tr><th>Name</th><th>Unit</th><th>Value</th></tr>\r\n";
    for (int row = 0; row < rows; ++row) {
        const QByteArray number = QByteArray::number(row);
        page += "<tr><td>Quantity" + number + "</td><td align=\"center\">&deg;C</td>" +
                "<td align=\"right\">&nbsp;" + number + ".5</td></tr>\r\n";
    }
    return page + "</table>\r\n</body></html>\r\n";
}

void parseBytes(benchmark::State& state, const QByteArray& bytes) {
    for (auto _ : state) {
        const StationTable table = ParseHtmlTable(decodeText(bytes));
        benchmark::DoNotOptimize(table.rowCount());
    }
    state.SetBytesProcessed(state.iterations() * bytes.size());
}

void BM_page40(benchmark::State& state) {
    parseBytes(state, stationPage(40));
}

void BM_page100000(benchmark::State& state) {
    parseBytes(state, stationPage(100'000));
}

void BM_page40_parse_only(benchmark::State& state) {
    const QString text = decodeText(stationPage(40));
    for (auto _ : state) {
        const StationTable table = ParseHtmlTable(text);
        benchmark::DoNotOptimize(table.rowCount());
    }
}

void BM_page40_libxml2(benchmark::State& state) {
    const QByteArray bytes = stationPage(40);
    for (auto _ : state) {
        htmlDocPtr document = htmlReadMemory(
            bytes.constData(), static_cast<int>(bytes.size()), nullptr, "UTF-8",
            HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET);
        if (!document)
            state.SkipWithError("libxml2 gave no document");
        xmlFreeDoc(document);
    }
}

BENCHMARK(BM_page40);
BENCHMARK(BM_page40_parse_only);
BENCHMARK(BM_page40_libxml2);
BENCHMARK(BM_page100000);

} // namespace

int main(int argc, char** argv) {
    return runAndPrintRatios(
        argc, argv,
        {{"40 rows, bytes to table, of libxml2", "BM_page40", "BM_page40_libxml2"},
         {"40 rows, text to table, of libxml2", "BM_page40_parse_only", "BM_page40_libxml2"},
         {"100,000 rows, time per byte, of that of 40 rows", "BM_page100000", "BM_page40", true}});
}
