#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace cardiolith::tool {

// Makes every integer option of the application and its subcommands, present and future, read its value
// as a decimal number: CLI11 detects the base by itself, so "071" would be read as octal 57 and "0x47" as
// hexadecimal 71. Leading zeros are allowed ("071" is 71); anything but an optional sign and decimal digits,
// and a number beyond the 64-bit range (which CLI11 would pin to its limit), is refused as a parse error
// that names the option. Call it after every option has been added.
void requireDecimalIntegers(CLI::App& app);

// Checks and normalises one integer text for CLI11: strips leading zeros in place. Returns an empty text
// when the text is a decimal number, else the reason it isn't.
std::string normaliseDecimal(std::string& text);

}  // namespace cardiolith::tool
