#include "apps/pxvis/EvalCommand.h"

#include "expression/CMathEvaluator.h"
#include "foundation/OQEngineContext.h"

#include <charconv>
#include <cmath>
#include <istream>
#include <ostream>
#include <string>

namespace pxvis {

namespace {

constexpr int64_t kClockStartMs = 1'000'000;
constexpr size_t kLongestLine = size_t { 4 } << 20; // bytes; no script file is longer either

OQEngineContext MakeContext()
{
    OQEngineContext context;
    context.virtualClock = true;
    context.virtualNanoseconds = kClockStartMs * 1'000'000;
    return context;
}

std::string JsonNumber(double value)
{
    if (std::isnan(value))
        return "\"nan\"";
    if (std::isinf(value))
        return value > 0 ? "\"inf\"" : "\"-inf\"";
    // Many readers take "-0" for a whole number and drop its sign.
    if (value == 0 && std::signbit(value))
        return "-0.0";
    char digits[32]; // sign, 17 digits, point, exponent of five characters
    const auto end
        = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 17).ptr;
    return { digits, end };
}

std::string JsonResult(CMathEvaluator& evaluator)
{
    std::string json = evaluator.IsCompiled() ? "{\"compiled\":true" : "{\"compiled\":false";
    const double result = evaluator.Evaluate();
    json += ",\"result\":" + (evaluator.HasResult() ? JsonNumber(result) : "null") + ",\"vars\":{";
    for (int32_t i = 0; i < evaluator.GetVariableCount(); i++) {
        if (i > 0)
            json += ',';
        // Names hold letters and digits only.
        json += '"' + evaluator.GetVariableName(i).ToUtf8()
            + "\":" + JsonNumber(evaluator.Variable(i));
    }
    return json + "}}\n";
}

// False at the end of the input. A line that is too long is read to its end and comes back cut.
bool ReadLine(std::streambuf& input, std::string& line)
{
    constexpr int kEnd = std::char_traits<char>::eof();
    line.clear();
    int character = input.sbumpc();
    if (character == kEnd)
        return false;
    for (; character != kEnd && character != '\n'; character = input.sbumpc()) {
        if (line.size() <= kLongestLine)
            line += static_cast<char>(character);
    }
    return true;
}

int Finish(std::ostream& output, std::ostream& errors)
{
    if (output.flush())
        return 0;
    errors << "pxvis eval: the output can't be written\n";
    return 1;
}

}

int RunEval(std::string_view equation, std::ostream& output, std::ostream& errors)
{
    OQEngineContext context = MakeContext();
    const OQEngineContextScope scope(&context);
    CMathEvaluator evaluator;
    CMathEvaluatorError error;
    evaluator.SetEquation(OQString::FromUtf8(equation), &error);
    output << JsonResult(evaluator);
    if (!evaluator.IsCompiled())
        errors << "pxvis eval: character " << error.position + 1 << ": " << error.reason.ToUtf8()
               << '\n';
    return Finish(output, errors);
}

int RunEvalBatch(std::istream& input, std::ostream& output, std::ostream& errors)
{
    OQEngineContext context = MakeContext();
    const OQEngineContextScope scope(&context);
    std::string line;
    for (int64_t number = 1; output && ReadLine(*input.rdbuf(), line); number++) {
        CMathEvaluator evaluator;
        if (line.size() > kLongestLine) {
            errors << "pxvis eval: line " << number << " is longer than 4 MiB\n";
        } else {
            if (line.ends_with('\r'))
                line.pop_back();
            evaluator.SetEquation(OQString::FromUtf8(line));
        }
        output << JsonResult(evaluator);
        // Someone may be waiting for this answer before the next question.
        if (input.rdbuf()->in_avail() <= 0)
            output.flush();
    }
    return Finish(output, errors);
}

}
