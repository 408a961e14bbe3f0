// The superset library's table. Every element function answers a failure
// with an error object {"error": {"kind", "case", "message"}} whose kinds are
// the elements area's own (ops/elements/element_error.h).
#include "capi/plus/plus_export_table.h"

#include "capi/export_row.h"
#include "zeblo/zeblo_plus.h"

namespace zeblo::capi::plus {
namespace {

using enum ParamKind;
using enum Effect;
using enum Failure;

const Raises kElementFailures{nullptr, {}, "elements"};

std::vector<Export> makeTable() {
    return {
        ZEBLO_ROW(zeblo_element_tree, {{"query", query}}, reads, errorObject, {kElementFailures}),
        ZEBLO_ROW(zeblo_element_find, {{"query", query}}, reads, errorObject, {kElementFailures}),
        ZEBLO_ROW(zeblo_element_get, {{"ref", text}}, reads, errorObject, {kElementFailures}),
        ZEBLO_ROW(zeblo_element_act, {{"ref", text}, {"action", text}, {"value", name}}, acts, errorObject,
                  {kElementFailures}),
        ZEBLO_ROW(zeblo_element_wait, {{"query", query}}, reads, errorObject, {kElementFailures}),
        ZEBLO_ROW(zeblo_press_keys, {{"appName", name}, {"keys", text}}, acts, errorObject, {kElementFailures}),
        ZEBLO_ROW(zeblo_last_failure, {}, reads, fallback, {}),
    };
}

}  // namespace

const std::vector<Export>& plusExportTable() {
    static const std::vector<Export> table = makeTable();
    return table;
}

const Export* findAnyExport(std::string_view name) {
    if (const Export* row = findExport(name)) return row;
    for (const Export& row : plusExportTable()) {
        if (row.name == name) return &row;
    }
    return nullptr;
}

}  // namespace zeblo::capi::plus
