#include "apps/pxvis/EvalCommand.h"

#include <doctest/doctest.h>
#include <sstream>

namespace {

std::string Batch(const std::string& lines)
{
    std::istringstream input(lines);
    std::ostringstream output;
    std::ostringstream errors;
    CHECK(pxvis::RunEvalBatch(input, output, errors) == 0);
    return output.str();
}

}

TEST_CASE("eval prints the result and the variables in the order in which they were met")
{
    std::ostringstream output;
    std::ostringstream errors;
    CHECK(pxvis::RunEval("Zoom=7/0;b=.1;zoom+b", output, errors) == 0);
    CHECK(output.str()
        == "{\"compiled\":true,\"result\":7.0999999999999996,"
           "\"vars\":{\"zoom\":7,\"b\":0.10000000000000001}}\n");
    CHECK(errors.str().empty());
}

TEST_CASE("eval tells on the error stream why an equation doesn't compile, and gives null")
{
    std::ostringstream output;
    std::ostringstream errors;
    CHECK(pxvis::RunEval("x=1;y=2*", output, errors) == 0);
    CHECK(output.str() == "{\"compiled\":false,\"result\":null,\"vars\":{\"x\":0,\"y\":0}}\n");
    CHECK(
        errors.str() == "pxvis eval: character 9: the statement ends where a value is expected\n");
}

TEST_CASE("A batch answers each line with one line, whatever stands in it")
{
    CHECK(Batch("log(0)\n\nx=-log(0);-x\r\nlog(-1)\n\xFF\xC3(1)\n1e300") // no line end at the last
        == "{\"compiled\":true,\"result\":\"-inf\",\"vars\":{}}\n"
           "{\"compiled\":false,\"result\":null,\"vars\":{}}\n"
           "{\"compiled\":true,\"result\":\"-inf\",\"vars\":{\"x\":\"inf\"}}\n"
           "{\"compiled\":true,\"result\":\"nan\",\"vars\":{}}\n"
           "{\"compiled\":true,\"result\":1,\"vars\":{}}\n"
           "{\"compiled\":true,\"result\":1.0000000000000001e+300,\"vars\":{}}\n");
    CHECK(Batch("").empty());
    CHECK(Batch(std::string("1+\0001\n", 5)) // a zero byte is skipped
        == "{\"compiled\":true,\"result\":2,\"vars\":{}}\n");

    // An assignment has no result, and each line has variables of its own.
    CHECK(Batch("x=5;\nx\n")
        == "{\"compiled\":true,\"result\":null,\"vars\":{\"x\":5}}\n"
           "{\"compiled\":true,\"result\":0,\"vars\":{\"x\":0}}\n");
}

TEST_CASE("A line past the limit is refused, and the next one stands for itself")
{
    const std::string longest = "1" + std::string(4 * 1024 * 1024 - 1, ' ');
    CHECK(Batch(longest + "\n" + longest + " \n2")
        == "{\"compiled\":true,\"result\":1,\"vars\":{}}\n"
           "{\"compiled\":false,\"result\":null,\"vars\":{}}\n"
           "{\"compiled\":true,\"result\":2,\"vars\":{}}\n");
}

TEST_CASE("A batch draws from one random state that starts at the clock's 1000000 ms")
{
    uint32_t state = 1'000'000;
    std::string expected;
    for (int line = 0; line < 3; line++) {
        uint32_t draw = 0;
        for (int call = 0; call < 2; call++) {
            state = state * 214013u + 2531011u;
            draw = draw << 15 | (state >> 16 & 0x7FFF);
        }
        expected += "{\"compiled\":true,\"result\":" + std::to_string(draw % 8) + ",\"vars\":{}}\n";
    }
    const std::string lines = "rand(8/8192)*8192\nrand(8/8192)*8192\nrand(8/8192)*8192\n";
    CHECK(Batch(lines) == expected);
    CHECK(Batch(lines) == expected);
}

TEST_CASE("An output that can't be written is a failure")
{
    std::istringstream input("1\n2\n");
    std::ostringstream errors;
    std::ostream closed(nullptr);
    CHECK(pxvis::RunEvalBatch(input, closed, errors) == 1);
    CHECK(pxvis::RunEval("1", closed, errors) == 1);
    CHECK(errors.str().find("can't be written") != std::string::npos);
}
