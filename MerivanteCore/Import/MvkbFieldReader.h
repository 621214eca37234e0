#pragma once

#include <optional>
#include <string_view>

#include "MerivanteCore/Import/MvkbPackage.h"

namespace merivante {

// Reads a field-study package: a ZIP archive whose "manifest.json" lists the study's
// quantitative items and its cases, each case with metadata and responses to the items.
struct MvkbFieldReader {
    // Absent when the archive has no readable manifest, or the manifest is not a JSON
    // object with a `format` naming "mvkbfield" or with `cases`.
    static std::optional<MvkbFieldPackage> read(std::string_view data);
};

} // namespace merivante
