#include "tools/apple-helper/RequestArgs.h"

#include "tools/apple-helper/RequestError.h"

namespace mibrel::applehelper {

const rapidjson::Value& RequestArgs::member(const char* name) const {
    const auto found = m_args.FindMember(name);
    if (found == m_args.MemberEnd()) {
        throw RequestError(std::string("The argument \"") + name + "\" is missing.");
    }
    return found->value;
}

std::string RequestArgs::string(const char* name) const {
    const rapidjson::Value& value = member(name);
    if (!value.IsString()) throw RequestError(std::string("The argument \"") + name + "\" must be a string.");
    return std::string(value.GetString(), value.GetStringLength());
}

std::int64_t RequestArgs::integer(const char* name) const {
    const rapidjson::Value& value = member(name);
    if (!value.IsInt64()) throw RequestError(std::string("The argument \"") + name + "\" must be a whole number.");
    return value.GetInt64();
}

} // namespace mibrel::applehelper
