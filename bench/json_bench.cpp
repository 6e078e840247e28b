// Decoding and encoding a 10 MB document of entry lines, beside RapidJSON's DOM and nlohmann/json. The
// documents are freed outside the times; a second table has them freed within.

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "automation/variant.h"
#include "bench/ratio.h"
#include "platform/scripting/dictionary.h"
#include "support/vbs_json.h"

namespace {

using vicenter::automation::Variant;
using vicenter::bench::Candidate;

constexpr std::size_t kBytes = 10'000'000;

std::string EntryLines() {
    std::string text = R"J({"FID":17,"FName":"自定义模板(1)","lines":[)J";
    for (int i = 1; text.size() < kBytes; ++i) {
        const std::string number = std::to_string(i);
        const std::string amount = std::to_string(i % 9973) + "." + std::to_string(10 + i % 90);
        const auto field = [&](const char* name, const std::string& value) {
            text += std::string("\"") + name + "\":" + value;
            text += ',';
        };
        text += i > 1 ? ",{" : "{";
        field("FID", "17");
        field("FEntryID", number);
        field("FNo", std::to_string(i / 4 + 1));
        field("FExp", "\"收到客户第" + number + "号合同货款\"");
        field("FDC", i % 2 == 0 ? "\"借\"" : "\"贷\"");
        field("FAccountID", std::to_string(1000 + i % 70));
        field("FAccountNumber", "\"1002.0" + std::to_string(i % 9) + "\"");
        field("FAcctountName", "\"银行存款\"");
        field("FSettleID", std::to_string(i % 5));
        field("FSettleName", "\"电汇\"");
        field("FSettleNumber", "\"T-" + number + "\"");
        field("FCurrencyID", "1");
        field("FCurrencyName", "\"人民币\"");
        field("FRate", "1");
        field("FAmountFor", amount);
        field("FAmount", amount);
        field("FQty", std::to_string(i % 100));
        field("FPrice", std::to_string(i % 37) + ".125");
        field("FUnitID", "0");
        field("FUnitName", "\"\"");
        field("FRemark", R"J("见\"合同\"\\附件\n第)J" + std::to_string(i % 12) + "页\"");
        field("FFileCount", std::to_string(i % 4));
        text += R"J("FItemsInfo":"C001,D02"})J";
    }
    return text + "]}";
}

void Check(bool good, const char* what) {
    if (good) return;
    std::fprintf(stderr, "wrong result: %s\n", what);
    std::exit(1);
}

void Decoding(const std::string& text, const char* title, bool freeWithin) {
    std::optional<Variant> ours;
    auto rapid = std::make_unique<rapidjson::Document>();
    nlohmann::json nlohmann;
    vicenter::support::VbsJson json;
    std::vector<Candidate> candidates{{"RapidJSON, DOM",
                                       [&] {
                                           rapid = std::make_unique<rapidjson::Document>();
                                           rapid->Parse(text.data(), text.size());
                                           if (freeWithin) rapid.reset();
                                       }},
                                      {"VbsJson.Decode",
                                       [&] {
                                           ours = json.Decode(text);
                                           if (freeWithin) ours.reset();
                                       }},
                                      {"nlohmann/json", [&] {
                                           nlohmann = nlohmann::json::parse(text);
                                           if (freeWithin) nlohmann = nullptr;
                                       }}};
    for (int round = 0; round < 9; ++round) {
        rapid.reset();
        ours.reset();
        nlohmann = nullptr;
        vicenter::bench::TimeInTurn(candidates, 1);
        if (freeWithin) continue;
        Check(json.Encode(*ours) == nlohmann::ordered_json::parse(text).dump() || round > 0,
              "decoded document");
        Check((*rapid)["lines"].Size() == nlohmann["lines"].size(), "number of lines");
    }
    vicenter::bench::PrintRatios(title, candidates, 0);
}

void Encoding(const std::string& text) {
    vicenter::support::VbsJson json;
    const Variant ours = json.Decode(text);
    rapidjson::Document rapid;
    rapid.Parse(text.data(), text.size());
    const auto nlohmann = nlohmann::json::parse(text);
    std::string out;
    rapidjson::StringBuffer buffer;
    std::string nlohmannOut;
    std::vector<Candidate> candidates{{"RapidJSON, writer",
                                       [&] {
                                           rapidjson::StringBuffer fresh;
                                           rapidjson::Writer<rapidjson::StringBuffer> writer(fresh);
                                           rapid.Accept(writer);
                                           buffer = std::move(fresh);
                                       }},
                                      {"VbsJson.Encode", [&] { out = json.Encode(ours); }},
                                      {"nlohmann/json", [&] { nlohmannOut = nlohmann.dump(); }}};
    vicenter::bench::TimeInTurn(candidates, 9);
    Check(nlohmann::json::parse(out) == nlohmann, "encoded document");
    Check(nlohmann::json::parse(buffer.GetString()) == nlohmann, "RapidJSON's document");
    vicenter::bench::PrintRatios("Encode", candidates, 0);
}

}  // namespace

int main() {
    const std::string text = EntryLines();
    std::printf("document of entry lines, %.1f MB\n", static_cast<double>(text.size()) / 1e6);
    Decoding(text, "Decode", false);
    Decoding(text, "Decode and free", true);
    Encoding(text);
    return 0;
}
