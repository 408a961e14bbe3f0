// The table of the exports against what is written elsewhere of them: the
// public header's declarations, the Python package's bindings, and the table's
// own rows (kinds that fit the C types, cases that exist).
#include "capi/export_table.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "capi/plus/plus_export_table.h"

namespace zeblo::capi {
namespace {

std::string readFile(const std::string& path) {
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string squeezed(std::string text) {
    text = std::regex_replace(text, std::regex(R"(\s+)"), " ");
    text = std::regex_replace(text, std::regex(R"(^ | $)"), "");
    return text;
}

// A declaration split into its C type and its name ("const char *appName").
std::pair<std::string, std::string> typeAndName(const std::string& declaration) {
    std::smatch m;
    const std::string text = squeezed(declaration);
    if (!std::regex_match(text, m, std::regex(R"((.*?) ?(\w+))"))) return {text, ""};
    return {m[1].str(), m[2].str()};
}

// The C parameters of a row as the header should declare them: an array
// followed by its count.
std::vector<std::pair<std::string, std::string>> expectedParams(const Export& row) {
    std::vector<std::pair<std::string, std::string>> out;
    std::size_t c = 0;
    for (const Param& param : row.params) {
        out.emplace_back(std::string(row.cTypes.at(c++)), std::string(param.name));
        if (param.kind == ParamKind::titles || param.kind == ParamKind::keyCodes) {
            out.emplace_back(std::string(row.cTypes.at(c++)), std::string(param.name) + "Count");
        }
    }
    EXPECT_EQ(c, row.cTypes.size()) << row.name;
    return out;
}

// Each declaration of `header` against the row of `table` in the same place.
void expectDeclarations(const std::string& header, const std::vector<Export>& table, std::size_t count) {
    const std::string text = readFile(header);
    const std::regex declaration(R"(\nZEBLO_API ([^;(]*)\(([^;)]*)\);)");
    std::vector<std::string> names;
    auto row = table.begin();
    for (auto m = std::sregex_iterator(text.begin(), text.end(), declaration); m != std::sregex_iterator(); ++m) {
        const auto [result, name] = typeAndName((*m)[1].str());
        names.push_back(name);
        if (row == table.end()) continue;
        EXPECT_EQ(name, row->name);
        EXPECT_EQ(result, row->cResult) << name;
        std::vector<std::pair<std::string, std::string>> params;
        std::stringstream list(squeezed((*m)[2].str()));
        for (std::string item; std::getline(list, item, ',');) {
            if (squeezed(item) != "void") params.push_back(typeAndName(item));
        }
        EXPECT_EQ(params, expectedParams(*row)) << name;
        ++row;
    }
    EXPECT_EQ(names.size(), count) << header;
    EXPECT_EQ(names.size(), table.size()) << header;
}

TEST(ExportTable, HeadersDeclareEveryRowInOrder) {
    expectDeclarations(ZEBLO_SOURCE_DIR "/include/zeblo/zeblo.h", exportTable(), 25);
    expectDeclarations(ZEBLO_SOURCE_DIR "/include/zeblo/zeblo_plus.h", plus::plusExportTable(), 7);
}

TEST(ExportTable, RowsAgreeWithThemselves) {
    // A kind for each C type, the arrays' counts apart.
    const std::map<ParamKind, std::string_view> cTypeOf = {{ParamKind::name, "const char *"},
                                                           {ParamKind::text, "const char *"},
                                                           {ParamKind::returned, "const char *"},
                                                           {ParamKind::query, "const char *"},
                                                           {ParamKind::titles, "const char *const *"},
                                                           {ParamKind::keyCodes, "const uint16_t *"},
                                                           {ParamKind::integer, "int32_t"},
                                                           {ParamKind::milliseconds, "int32_t"},
                                                           {ParamKind::mask, "uint64_t"},
                                                           {ParamKind::flag, "bool"}};
    std::set<std::string_view> names;
    std::vector<const Export*> rows;
    for (const auto* table : {&exportTable(), &plus::plusExportTable()}) {
        for (const Export& row : *table) rows.push_back(&row);
    }
    for (const Export* each : rows) {
        const Export& row = *each;
        SCOPED_TRACE(std::string(row.name));
        EXPECT_TRUE(names.insert(row.name).second);
        EXPECT_EQ(plus::findAnyExport(row.name), &row);
        for (const auto& [type, name] : expectedParams(row)) {
            if (!name.ends_with("Count")) continue;
            EXPECT_EQ(type, "int32_t");
        }
        std::size_t c = 0;
        for (const Param& param : row.params) {
            EXPECT_EQ(row.cTypes.at(c), cTypeOf.at(param.kind)) << param.name;
            c += param.kind == ParamKind::titles || param.kind == ParamKind::keyCodes ? 2 : 1;
        }
        // A string result is JSON the host frees; a boolean export logs, or
        // answers quietly; only the string exports have error objects.
        EXPECT_EQ(row.result == ResultKind::boolean, row.failure == Failure::logged || row.failure == Failure::quiet);
        EXPECT_EQ(row.failure == Failure::quiet || row.failure == Failure::fallback || row.failure == Failure::none,
                  row.raises.empty());
        for (const Raises& raises : row.raises) {
            if (raises.kind == nullptr) {
                EXPECT_FALSE(raises.messageDomain.empty());
                continue;
            }
            for (const std::string_view wanted : raises.cases) {
                bool found = false;
                for (const ErrorCase& c : raises.kind->cases) found = found || c.name == wanted;
                EXPECT_TRUE(found) << raises.kind->typeName << " has no case " << wanted;
            }
        }
    }
    EXPECT_EQ(plus::findAnyExport("zeblo_nothing"), nullptr);
    EXPECT_EQ(findExport("zeblo_element_tree"), nullptr);  // the 25's table has only the 25
}

// The Python package: its ctypes declarations are the table's C types, and
// each export but zeblo_free_string has a function ("zeblo_get_window_text"
// is window_text) whose parameters stand for the export's, in order: of a
// fitting type, each named with a word of the parameter's name ("app" for
// appName, "retry_for" for retryTimeout, in seconds).
nlohmann::json pythonBindings() {
    const std::string command = std::string("PYTHONPATH=" ZEBLO_SOURCE_DIR "/python ") + ZEBLO_PYTHON + " " +
                                ZEBLO_SOURCE_DIR "/tests/capi/python_bindings.py";
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return nullptr;
    std::array<char, 4096> buffer{};
    for (std::size_t n = 0; (n = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) out.append(buffer.data(), n);
    pclose(pipe);
    return nlohmann::json::parse(out, nullptr, false);
}

std::set<std::string> words(const std::string& snake) {
    std::set<std::string> out;
    std::stringstream in(snake);
    for (std::string word; std::getline(in, word, '_');) out.insert(word);
    return out;
}

std::string snakeCase(std::string_view name) {
    std::string out;
    for (const char c : name) out += c >= 'A' && c <= 'Z' ? std::string("_") + char(c - 'A' + 'a') : std::string(1, c);
    return out;
}

TEST(ExportTable, PythonBindingsFollowIt) {
    const nlohmann::json python = pythonBindings();
    ASSERT_TRUE(python.is_object()) << "the Python package could not be read";
    const std::map<std::string_view, std::string> ctype = {{"const char *", "c_char_p"},
                                                           {"const char *const *", "LP_c_char_p"},
                                                           {"const uint16_t *", "LP_c_ushort"},
                                                           {"int32_t", "c_int"},
                                                           {"uint64_t", "c_ulong"},
                                                           {"bool", "c_bool"}};
    const std::map<ParamKind, std::set<std::string>> annotations = {
        {ParamKind::name, {"Optional[str]"}},
        {ParamKind::text, {"str"}},
        {ParamKind::titles, {"Sequence[str]"}},
        {ParamKind::keyCodes, {"Sequence[int]"}},
        {ParamKind::integer, {"int"}},
        {ParamKind::mask, {"int"}},
        {ParamKind::milliseconds, {"float", "Optional[float]"}},
        {ParamKind::flag, {"bool"}}};
    std::set<std::string> functions;
    for (const Export& row : exportTable()) {
        const std::string name(row.name);
        SCOPED_TRACE(name);
        const nlohmann::json result = row.result == ResultKind::json      ? nlohmann::json("c_void_p")
                                      : row.result == ResultKind::boolean ? nlohmann::json("c_bool")
                                                                          : nlohmann::json();
        nlohmann::json declared = {result, nlohmann::json::array()};
        for (const std::string_view type : row.cTypes) declared[1].push_back(ctype.at(type));
        if (row.failure == Failure::none) declared[1] = {"c_void_p"};  // the address of a returned string
        EXPECT_EQ(python["ctypes"][name], declared);
        if (row.failure == Failure::none) continue;

        std::string function = name.substr(std::string("zeblo_").size());
        if (function.starts_with("get_")) function = function.substr(4);
        functions.insert(function);
        const nlohmann::json params = python["functions"].value(function, nlohmann::json::array());
        ASSERT_EQ(params.size(), row.params.size()) << function;
        for (std::size_t i = 0; i < params.size(); ++i) {
            const std::string pythonName = params[i]["name"];
            std::set<std::string> shared;
            for (const std::string& w : words(pythonName)) {
                if (words(snakeCase(row.params[i].name)).count(w) != 0) shared.insert(w);
            }
            EXPECT_FALSE(shared.empty()) << function << ": " << pythonName << " for " << row.params[i].name;
            EXPECT_EQ(annotations.at(row.params[i].kind).count(params[i]["annotation"]), 1u)
                << function << ": " << pythonName << " is " << params[i]["annotation"];
        }
    }
    std::set<std::string> all;
    for (const auto& item : python["functions"].items()) all.insert(item.key());
    EXPECT_EQ(all, functions);
    // The superset library's functions are declared too (its Element
    // objects and functions call them).
    for (const Export& row : plus::plusExportTable()) {
        nlohmann::json declared = {"c_void_p", nlohmann::json::array()};
        for (const std::string_view type : row.cTypes) declared[1].push_back(ctype.at(type));
        EXPECT_EQ(python["ctypes"][std::string(row.name)], declared) << row.name;
    }
}

}  // namespace
}  // namespace zeblo::capi
