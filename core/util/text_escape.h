#pragma once
// Escaping of byte strings (names and paths, which need not be UTF-8) for the two places they are
// printed: a terminal and JSON. Every piece of output that shows a name goes through one of these,
// so a name can neither steer the terminal nor make two different files look alike.
//
// JSON (appendJsonString): valid UTF-8 passes through; each byte of a sequence that is not valid
// UTF-8 is written as the lone surrogate escape \udcXX (XX = the byte, 80..ff), the mapping of
// Python's "surrogateescape" error handler, so
//     json.loads(text).encode("utf-8", "surrogateescape")
// gives the original bytes back. Valid UTF-8 never holds a surrogate, so the mapping is
// lossless: the byte E9 gives "\udce9", the two bytes C3 A9 give "é". Control characters
// (U+0000..U+001F, U+007F..U+009F) and the JavaScript line separators U+2028/U+2029 are escaped
// as well, so the text is safe to print; the output is always valid UTF-8.
//
// Terminal (terminalText): as `ls -b` shows names: printable UTF-8 passes through; a backslash
// becomes "\\", the usual control characters "\a" "\b" "\t" "\n" "\v" "\f" "\r", every other
// control byte, control character and byte that is not valid UTF-8 a three-digit octal escape
// ("\033" for ESC, "\351" for a lone E9). Reading the text back with C's escape rules gives the
// original bytes.

#include <optional>
#include <string>
#include <string_view>

namespace sondrel {

/// Appends `bytes` to `out` as a quoted JSON string, with the encoding described above.
void appendJsonString(std::string& out, std::string_view bytes);

/// `bytes` as a quoted JSON string (appendJsonString into a new string).
std::string jsonString(std::string_view bytes);

/// The bytes a quoted JSON string stands for, reversing appendJsonString: escapes are decoded,
/// surrogate pairs joined, and a lone \udc80..\udcff gives back its byte. Returns nullopt when
/// `json` is not exactly one well-formed JSON string, its raw text is not valid UTF-8, or it
/// holds a lone surrogate that no byte maps to.
std::optional<std::string> decodeJsonString(std::string_view json);

/// `bytes` as a terminal may show them, with the escapes described above. Plain printable names
/// come back unchanged.
std::string terminalText(std::string_view bytes);

} // namespace sondrel
