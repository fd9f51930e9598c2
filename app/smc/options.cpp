#include "app/smc/options.h"

#include <map>

namespace SMC {

namespace {

std::map<Option, std::string>& values()
{
    static std::map<Option, std::string> options;
    return options;
}

} // namespace

void Options::set(Option option, const std::string& value) { values()[option] = value; }

void Options::clear() { values().clear(); }

bool Options::isSet(Option option) { return values().count(option) != 0; }

std::string Options::value(Option option)
{
    const auto found = values().find(option);
    return found == values().end() ? std::string() : found->second;
}

} // namespace SMC
