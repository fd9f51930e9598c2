#pragma once

#include <optional>
#include <string_view>

// Degrees Celsius of what a temperature's hwmon file holds, which is a number of
// thousandths such as "38850\n". Nothing for what is no such number. Takes any bytes
// and allocates nothing.
[[nodiscard]] std::optional<double> hwmonTemperature(std::string_view contents);
