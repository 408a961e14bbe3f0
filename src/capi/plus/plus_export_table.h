// The table of the superset library's own exports (zeblo/zeblo_plus.h): the
// element interface, zeblo_press_keys and zeblo_last_failure, in the form of
// the table of the 25 (capi/export_table.h). The tool's element commands and
// the tests are held to it as the others are to that table.
#pragma once

#include <string_view>
#include <vector>

#include "capi/export_table.h"

namespace zeblo::capi::plus {

// The superset library's own exports, in the order of its header.
const std::vector<Export>& plusExportTable();

// The export named `name` in either table, or null.
const Export* findAnyExport(std::string_view name);

}  // namespace zeblo::capi::plus
