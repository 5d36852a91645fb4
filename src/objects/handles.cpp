#include "objects/handles.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <string_view>

namespace pral::objects {

namespace {

/// Text that is too long is cut between two characters.
void write_text(char (&target)[sizeof(pral_error::text)], const char* text, std::size_t length) {
    if (length >= sizeof target) {
        length = sizeof target - 1;
        while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xc0) == 0x80) --length;
    }
    std::memcpy(target, text, length);
    target[length] = 0;
}

pral_status report(pral_status code, const char* text, std::int64_t index, pral_error* error) noexcept {
    if (error != nullptr && error->size == sizeof(pral_error)) {
        error->code = code;
        error->index = index;
        write_text(error->text, text, std::strlen(text));
    }
    return code;
}

}  // namespace

pral_status report(const Failure& failure, pral_error* error) noexcept {
    return report(failure.code, failure.text.c_str(), failure.index, error);
}

pral_status report_current(pral_error* error) noexcept {
    try {
        throw;
    } catch (const Failure& failure) {
        return report(failure, error);
    } catch (const std::bad_alloc&) {
        return report(PRAL_ERROR_MEMORY, "not enough memory", -1, error);
    } catch (const std::length_error&) {
        return report(PRAL_ERROR_MEMORY, "not enough memory", -1, error);
    } catch (const std::exception& problem) {
        return report(PRAL_ERROR_INTERNAL, problem.what(), -1, error);
    } catch (...) {
        return report(PRAL_ERROR_INTERNAL, "unknown problem", -1, error);
    }
}

std::string without_prefix(const std::string& message) {
    constexpr std::string_view kPrefix = "Error: ";
    return message.starts_with(kPrefix) ? message.substr(kPrefix.size()) : message;
}

}  // namespace pral::objects
