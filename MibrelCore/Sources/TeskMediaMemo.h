#pragma once

#include <string>
#include <tuple>

#include "MibrelCore/Model/TeskValueTypes.h"

namespace mibrel {

// Seven free-text observations on a recording.
struct TeskMediaMemo {
    std::string tone;
    std::string pausesAndEmphasis;
    std::string setting;
    std::string gestureAndMovement;
    std::string interaction;
    std::string nonverbalContext;
    std::string analyticNotes;

    bool operator==(const TeskMediaMemo&) const = default;

    static constexpr auto jsonFields() {
        using namespace platform::json;
        using T = TeskMediaMemo;
        return std::tuple{required("analyticNotes", &T::analyticNotes),
                          required("gestureAndMovement", &T::gestureAndMovement),
                          required("interaction", &T::interaction),
                          required("nonverbalContext", &T::nonverbalContext),
                          required("pausesAndEmphasis", &T::pausesAndEmphasis),
                          required("setting", &T::setting),
                          required("tone", &T::tone)};
    }
};

} // namespace mibrel
