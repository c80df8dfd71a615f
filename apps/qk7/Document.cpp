#include "apps/qk7/Document.h"

#include "apps/qk7/Console.h"

namespace qk7 {

namespace {

bool g_bPrinted = false;

Json DocumentOf(const std::string& Command) {
    return {{"schema", "qk7/" + Command + "/1"}, {"version", QK7_VERSION}};
}

void PrintOnce(const Json& Document) {
    g_bPrinted = true;
    Print(Dump(Document));
}

} // namespace

std::string Dump(const Json& Value) {
    return Value.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void PrintDocument(const std::string& Command, const Json& Results) {
    Json document = DocumentOf(Command);
    document["results"] = Results.is_array() ? Results : Json::array({Results});
    PrintOnce(document);
}

void PrintFailedDocument(const std::string& Command, const std::string& Words) {
    if (g_bPrinted)
        return;
    Json document = DocumentOf(Command);
    document["error"] = Words;
    document["results"] = Json::array();
    PrintOnce(document);
}

} // namespace qk7
