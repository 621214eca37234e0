#include "tools/apple-helper/HelperServer.h"

#include <cstdint>
#include <new>
#include <optional>
#include <variant>

#include "tools/apple-helper/JsonText.h"
#include "tools/apple-helper/RequestError.h"

namespace mibrel::applehelper {
namespace {

using rapidjson::Document;
using rapidjson::Value;

// Echoed as sent; the application numbers its requests with unsigned 64-bit ids.
using RequestID = std::optional<std::variant<std::int64_t, std::uint64_t>>;

enum class LineRead { Complete, TooLong, End };

// Reads up to the next line end. A line longer than `maxBytes` is skipped to its end
// rather than held, so a runaway client cannot exhaust memory.
LineRead readLine(std::istream& input, std::string& line, std::size_t maxBytes) {
    line.clear();
    std::streambuf& buffer = *input.rdbuf();
    bool tooLong = false;
    for (;;) {
        const auto next = buffer.sbumpc();
        if (next == std::char_traits<char>::eof()) {
            if (line.empty() && !tooLong) return LineRead::End;
            break;
        }
        if (next == '\n') break;
        if (line.size() < maxBytes) line.push_back(static_cast<char>(next));
        else tooLong = true;
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return tooLong ? LineRead::TooLong : LineRead::Complete;
}

std::string responseLine(Document& response) {
    if (auto line = compactJson(response)) return *line;
    return R"({"ok":false,"error":"The helper produced an answer that could not be written as JSON."})";
}

void addID(Document& response, const RequestID& id) {
    if (!id) return;
    response.AddMember("id", std::visit([](auto number) { return Value(number); }, *id), response.GetAllocator());
}

std::string failure(const RequestID& id, std::string_view message) {
    Document response(rapidjson::kObjectType);
    auto& allocator = response.GetAllocator();
    addID(response, id);
    response.AddMember("ok", false, allocator);
    response.AddMember("error", jsonString(message, allocator), allocator);
    return responseLine(response);
}

std::string success(const RequestID& id, Document& result) {
    Document response(rapidjson::kObjectType);
    auto& allocator = response.GetAllocator();
    addID(response, id);
    response.AddMember("ok", true, allocator);
    response.AddMember("result", Value(result, allocator), allocator);
    return responseLine(response);
}

RequestID requestID(const Value& request) {
    const auto id = request.FindMember("id");
    if (id == request.MemberEnd()) return std::nullopt;
    if (id->value.IsUint64()) return id->value.GetUint64();
    if (id->value.IsInt64()) return id->value.GetInt64();
    return std::nullopt;
}

const Value& requestArgs(const Value& request) {
    static const Value none(rapidjson::kObjectType);
    const auto args = request.FindMember("args");
    if (args == request.MemberEnd() || args->value.IsNull()) return none;
    if (!args->value.IsObject()) throw RequestError("The request's \"args\" must be a JSON object.");
    return args->value;
}

} // namespace

HelperServer::HelperServer(std::size_t maxRequestBytes) : m_maxRequestBytes(maxRequestBytes) {}

void HelperServer::add(std::string op, Operation operation) {
    m_operations.insert_or_assign(std::move(op), std::move(operation));
}

const HelperServer::Operation& HelperServer::operation(const Value& request) const {
    const auto op = request.FindMember("op");
    if (op == request.MemberEnd()) throw RequestError("The request names no operation (\"op\" is missing).");
    if (!op->value.IsString()) throw RequestError("The request's \"op\" must be a string.");
    const std::string_view name(op->value.GetString(), op->value.GetStringLength());
    const auto found = m_operations.find(name);
    if (found == m_operations.end()) throw RequestError("Unknown operation: " + shortened(name, 100) + ".");
    return found->second;
}

std::string HelperServer::respondToRequest(const Value& request) const {
    const auto id = requestID(request);
    try {
        const Operation& run = operation(request);
        const RequestArgs args(requestArgs(request));
        Document result;
        run(args, result);
        return success(id, result);
    } catch (const RequestError& error) {
        return failure(id, error.what());
    } catch (const std::bad_alloc&) {
        return failure(id, "The helper ran out of memory for this request.");
    } catch (const std::exception& error) {
        return failure(id, std::string("The operation failed: ") + error.what());
    } catch (...) {
        return failure(id, "The operation failed for an unknown reason.");
    }
}

std::string HelperServer::respond(std::string_view line) const {
    if (line.find_first_not_of(" \t\r") == std::string_view::npos) return failure({}, "The request is empty.");
    Document request;
    // Iterative parsing, so deeply nested input cannot exhaust the stack.
    request.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag>(line.data(), line.size());
    if (request.HasParseError()) return failure({}, "The request is not valid JSON.");
    if (!request.IsObject()) return failure({}, "The request must be a JSON object.");
    return respondToRequest(request);
}

bool HelperServer::serve(std::istream& input, const LineSink& send) const {
    std::string line;
    for (;;) {
        const LineRead read = readLine(input, line, m_maxRequestBytes);
        if (read == LineRead::End) return true;
        std::string response;
        try {
            response = read == LineRead::TooLong ? failure({}, "The request is too long.") : respond(line);
        } catch (const std::bad_alloc&) {
            response = R"({"ok":false,"error":"The helper ran out of memory for this request."})";
        }
        if (!send(response)) return false;
    }
}

} // namespace mibrel::applehelper
