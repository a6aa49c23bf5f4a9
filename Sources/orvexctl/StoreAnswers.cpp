#include "StoreAnswers.h"

#include "CommandText.h"
#include "Text.h"

#include <CLI/CLI.hpp>

namespace orvex {

QUuid idArgument(const std::string& argument) {
    const auto id = platform::uuid(argumentText(argument));
    if (!id) {
        throw CLI::ValidationError("ID", description("须为 UUID", "must be a UUID"));
    }
    return *id;
}

} // namespace orvex
