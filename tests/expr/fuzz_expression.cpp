// libFuzzer entry for the expression evaluator. Input: one byte choosing the
// radix, then the text. Every input must compile or report an error, run
// when it compiled, and give back every block it took.
// Built as a fuzzer with ZY_FUZZ, and into a replay test with ZY_FUZZ_REPLAY.

#include "imaging/expr/expr.h"
#include "imaging/galloc.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

void check(bool condition, const char* what) {
    if (condition) return;
#ifdef ZY_FUZZ_REPLAY
    fprintf(stderr, "invariant broken: %s\n", what); // the fuzzer shows the input instead
#endif
    abort();
}

void quiet(const char*, va_list) {}

double sum(int count, const double* values) {
    double total = 0;
    for (int i = 0; i < count; ++i)
        total += values[i];
    return total;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    GPrintHook previous = gsetprinthook(quiet);
    int32_t liveBefore = galloc_live_count();

    ExprContext* context = exprCreate();
    check(context != nullptr, "exprCreate failed");
    exprSetRadix(context, 2 + data[0] % 35);
    exprRegisterFunction(context, "sum", sum);
    exprSetVariable(context, "x", 3);
    exprSetVariable(context, "a", 1);
    const char* text = reinterpret_cast<const char*>(data + 1);
    size_t length = size - 1;

    ExprProgram* program = exprCompile(context, text, length);
    check((program != nullptr) == (exprErrorField(context) == 0),
          "program and error field disagree");
    if (program) {
        exprRun(program);
        exprRun(program); // a second run sees the variables the first one set
        exprFreeProgram(program);
    } else {
        check(exprErrorNumber(context) != 0, "error without a number");
        check(exprErrorPosition(context) >= 0 &&
                  static_cast<size_t>(exprErrorPosition(context)) <= length,
              "error position outside the text");
    }
    exprEvaluate(context, text, length);
    exprDestroy(context);

    check(galloc_live_count() == liveBefore, "galloc blocks leaked");
    gsetprinthook(previous);
    return 0;
}
