// How long sorting takes per screenshot: the sorter runs once for every picture read, on top
// of recognition, so it should stay far below a millisecond.
#include "core/Facts.h"
#include "core/Sensitive.h"
#include "core/Sorter.h"
#include "core/Titles.h"

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

namespace {

using namespace lumivale;

const std::vector<std::string> receipt = {
    "Brew & Bloom Café",     "12 Residency Road, Bengaluru", "TAX INVOICE",
    "Bill No. 4471",         "12 Oct 2026 8:42 PM",          "Cappuccino x2 ₹360.00",
    "Subtotal ₹900.00",      "Grand Total ₹1,008.00",        "Paid by UPI · INR",
    "GSTIN 29ABCDE1234F1Z5", "Thank you! Visit again"};

// A long chat: forty lines, which is about as much text as a phone screen holds.
std::vector<std::string> chat() {
    std::vector<std::string> lines;
    for (int i = 0; i < 20; ++i) {
        lines.push_back("are we still on for dinner tonight at the usual place?");
        lines.push_back("10:" + std::to_string(10 + i) + " ✓✓");
    }
    return lines;
}

void sortReceipt(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(Sorter::sort(receipt, {"QR"}));
}
BENCHMARK(sortReceipt);

void sortChat(benchmark::State& state) {
    const std::vector<std::string> lines = chat();
    for (auto _ : state)
        benchmark::DoNotOptimize(Sorter::sort(lines, {}));
}
BENCHMARK(sortChat);

void findPrivateNumbers(benchmark::State& state) {
    std::string text;
    for (const std::string& line : receipt)
        text += line + "\n";
    for (auto _ : state)
        benchmark::DoNotOptimize(Sensitive::find(text));
}
BENCHMARK(findPrivateNumbers);

void factsAndTitle(benchmark::State& state) {
    Shot shot("/tmp/receipt.png", 1, Date{}, Date{});
    for (const std::string& line : receipt)
        shot.lines.push_back({line, 0, 0, 1, 0.05f});
    shot.guess = Shelf::bills;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Facts::of(shot));
        benchmark::DoNotOptimize(Titles::of(shot, 40));
    }
}
BENCHMARK(factsAndTitle);

} // namespace

BENCHMARK_MAIN();
