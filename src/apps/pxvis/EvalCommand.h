#pragma once

#include <iosfwd>
#include <string_view>

namespace pxvis {

// The command "eval": runs equations and prints one JSON object a line,
//   {"compiled":bool,"result":number|null,"vars":{name:number}}
// with NaN and infinities as the strings "nan", "inf" and "-inf". The clock stands at that of a
// render's first frame, so random numbers come out the same each time. Texts are UTF-8. Both give
// the exit status.

// An equation that doesn't compile is a result, not a failure; the reason goes to errors.
int RunEval(std::string_view equation, std::ostream& output, std::ostream& errors);

// An equation a line, up to the end of the input. Each has variables of its own, all share one
// random state. A line end is LF or CR LF.
int RunEvalBatch(std::istream& input, std::ostream& output, std::ostream& errors);

}
