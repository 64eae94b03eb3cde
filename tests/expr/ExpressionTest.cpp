#include "imaging/expr/expr.h"
#include "imaging/galloc.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace {

std::string g_printed;

void capture(const char* format, va_list args) {
    char buffer[512];
    vsnprintf(buffer, sizeof buffer, format, args);
    g_printed += buffer;
}

struct ValueCase {
    const char* text;
    double value;
};

struct ErrorCase {
    const char* text;
    int number;
    int position;
};

class Expression : public ::testing::Test {
  protected:
    void SetUp() override {
        m_Live = galloc_live_count();
        m_Previous = gsetprinthook(capture);
        g_printed.clear();
        m_Context = exprCreate();
        ASSERT_NE(m_Context, nullptr);
        m_X = exprSetVariable(m_Context, "x", 3);
        exprSetVariable(m_Context, "a-b", 7);
    }
    void TearDown() override {
        exprDestroy(m_Context);
        gsetprinthook(m_Previous);
        EXPECT_EQ(galloc_live_count(), m_Live) << "the evaluator leaked blocks";
    }
    double Eval(const std::string& text) {
        return exprEvaluate(m_Context, text.c_str(), text.size());
    }
    void ExpectValues(std::initializer_list<ValueCase> cases) {
        for (const ValueCase& c : cases) {
            g_printed.clear();
            double value = Eval(c.text);
            EXPECT_EQ(exprErrorField(m_Context), 0) << c.text << ": " << g_printed;
            if (std::isnan(c.value))
                EXPECT_TRUE(std::isnan(value)) << c.text;
            else
                EXPECT_DOUBLE_EQ(value, c.value) << c.text;
        }
    }
    void ExpectErrors(std::initializer_list<ErrorCase> cases) {
        for (const ErrorCase& c : cases) {
            g_printed.clear();
            EXPECT_EQ(Eval(c.text), 0.0) << c.text;
            EXPECT_EQ(exprErrorField(m_Context), -1) << c.text;
            EXPECT_EQ(exprErrorNumber(m_Context), c.number) << c.text;
            EXPECT_EQ(exprErrorPosition(m_Context), c.position) << c.text;
        }
    }

    ExprContext* m_Context = nullptr;
    double* m_X = nullptr;
    int32_t m_Live = 0;
    GPrintHook m_Previous = nullptr;
};

// "v" + std::to_string(i) trips a false -Wrestrict in g++ 12.
std::string Numbered(const char* prefix, int i) {
    std::string text(prefix);
    text += std::to_string(i);
    return text;
}

const double kInf = std::numeric_limits<double>::infinity();
const double kPi = 3.14159265358979323846;

} // namespace

TEST_F(Expression, FollowsThePrecedenceTable) {
    ExpectValues({
        {"1 + 2 * 3", 7},
        {"(1 + 2) * 3", 9},
        {"[1 + 2] * 3", 9},
        {"2 * 3 ** 2", 36}, // ** sits with the comparisons, below * and +
        {"1 + 2 ** 2", 9},
        {"1 << 2 + 1", 8},
        {"1 < 2 == 1", 1},
        {"2 == 2 < 3", 0},
        {"6 & 3 ^ 1", 3},
        {"6 ^ 3 | 8", 13},
        {"1 | 2 && 0", 0},
        {"0 && 1 || 1", 1},
        {"1 + 2 <? 10", 3},
        {"1 + 1 ? 5 : 6", 5},
        {"-2 ** 2", 4},  // unary binds tighter than **
        {"2 * x[1]", 8}, // x[1] is x + 1 and binds tightest
        {"-x[1]", -4},
        {"x = 1 + 2 * 3", 7},
    });
}

TEST_F(Expression, AssociatesWithinALevel) {
    ExpectValues({
        {"10 - 4 - 3", 3},
        {"100 / 10 / 5", 2},
        {"2 ** 3 ** 2", 64},
        {"17 % 7 % 2", 1},
        {"0 ? 1 : 0 ? 2 : 3", 3},
        {"1 ? 0 ? 4 : 5 : 6", 5},
        {"0 ? 1 : 1 ? 2 : 3", 2},
        {"1 ? 2, 3 : 4", 3},
        {"p = q = 4; p + q", 8},
        {"1, 2, 3", 3},
    });
}

TEST_F(Expression, AppliesEveryOperator) {
    ExpectValues({
        {"7 // 2", 1},
        {"7 % 2", 1},
        {"-7 % 2", 1},
        {"7 % -2", -1},
        {"-7 %% 2", -1},
        {"7.5 %% 2", 1.5},
        {"9 / 2", 4.5},
        {"1 << 3", 8},
        {"256 >> 4", 16},
        {"-16 >> 2", -4},
        {"1 << -1", 0},
        {"8 >> -1", 16},
        {"1 << 64", 0},
        {"-1 >> 100", -1},
        {"5 # 3", 1},
        {"5 <> 5", 0},
        {"5 != 3", 1},
        {"3 <= 3", 1},
        {"3 >= 4", 0},
        {"2 < 3", 1},
        {"2 > 3", 0},
        {"3 == 3", 1},
        {"6 ~ 3", 5},
        {"4 ! 1", 5},
        {"12 & 10", 8},
        {"12 | 3", 15},
        {"1 ++ 0", 1},
        {"0 ++ 0", 0},
        {"2 || 0", 1},
        {"2 && 3", 1},
        {"1 -- 1", 0},
        {"0 -- 5", 1},
        {"3 <? 5", 3},
        {"3 >? 5", 5},
        {"1 !: 2 !? 3", 2},
        {"0 !: 2 !? 3", 3},
        {"- 2 * 3", -6},
        {"--3", 3},
        {"!0", 1},
        {"!5", 0},
        {"~0", -1},
        {"<2.7", 2},
        {">2.1", 3},
        {"<-2.5", -3},
        {"<<3", 6},
        {">>7", 3},
        {">>-7", -4},
        {"+5", 5},
        {"-+-5", 5},
        {"1 / 0", kInf},
        {"0 / 0", NAN},
        {"~(0/0)", -1},
        {"2 ** 0.5", std::sqrt(2.0)},
    });
}

TEST_F(Expression, ReadsLiteralsInTheCurrentRadix) {
    ExpectValues({
        {"0x1F", 31},
        {"0X1f", 31},
        {"0b101", 5},
        {"0B11", 3},
        {"0o17", 15},
        {"0O7", 7},
        {"1e3", 1000},
        {"2.5e-1", 0.25},
        {".5", 0.5},
        {"5.", 5},
        {"007", 7},
        {"1e400", kInf},
        {"1e-400", 0},
        {"0.0", 0},
        {"1.5E+2", 150},
    });
    struct RadixCase {
        int radix;
        const char* text;
        double value;
    } cases[] = {
        {16, "ff", 255},
        {16, "a", 10},
        {16, "0x10", 16},
        {16, "0b1", 0xB1},
        {16, "0o17", 15},
        {16, "1.8", 1.5},
        {16, "1e3", 0x1E3},
        {2, "101", 5},
        {2, "0x10", 16},
        {2, "0b11", 3},
        {2, "0.1", 0.5},
        {36, "z", 35},
        {36, "0x1", 33 * 36 + 1},
        {34, "0x1", 33 * 34 + 1},
        {33, "0x1", 1},
        {12, "0b1", 11 * 12 + 1},
        {11, "0b1", 1},
        {25, "0o1", 24 * 25 + 1},
        {24, "0o1", 1},
        {8, "17", 15},
        // Words made only of digits of the radix are numbers; others are names.
        {16, "face", 0xFACE},
        {16, "ff.8", 255.5},
        {16, "exp(0) + x", 4},
        {36, "'x' + 'a-b'", 10},
    };
    for (const RadixCase& c : cases) {
        exprSetRadix(m_Context, c.radix);
        EXPECT_DOUBLE_EQ(Eval(c.text), c.value) << c.text << " in radix " << c.radix;
        EXPECT_EQ(exprErrorField(m_Context), 0) << c.text << " in radix " << c.radix;
    }
    exprSetRadix(m_Context, 2);
    ExpectErrors({{"2", EXPR_ERROR_SYNTAX, 0}, {"0b12", EXPR_ERROR_SYNTAX, 3}});
    EXPECT_EQ(exprSetRadix(m_Context, 37), 0);
    EXPECT_EQ(exprSetRadix(m_Context, 1), 0);
    EXPECT_EQ(exprSetRadix(m_Context, 10), 2);
    // A huge literal is infinite, not an error.
    EXPECT_EQ(Eval(std::string(400, '9')), kInf);
}

TEST_F(Expression, CallsEveryBuiltInFunction) {
    ExpectValues({
        {"max(1, 5, 3)", 5},
        {"max()", -kInf},
        {"min()", kInf},
        {"min(4, 2, 8)", 2},
        {"hypot(3, 4)", 5},
        {"hypot()", 0},
        {"hypot(-2)", 2},
        {"int(-2.7)", -2},
        {"int(2.7)", 2},
        {"round(-2.5)", -3},
        {"round(2.5)", 3},
        {"round(2.4)", 2},
        {"round(-0.4)", 0},
        {"log2(8)", 3},
        {"ceilpow2(5)", 8},
        {"ceilpow2(8)", 8},
        {"ceilpow2(536870912)", 536870912},
        {"floorpow2(5)", 4},
        {"floorpow2(8)", 8},
        {"floorpow2(0.3)", 0.25},
        {"bswap(1)", 16777216},
        {"bswap(-1)", 4294967295.0},
        {"bswap(0x12345678)", 0x78563412},
        {"sqrt(16)", 4},
        {"floor(-1.5)", -2},
        {"ceil(-1.5)", -1},
        {"sin(0)", 0},
        {"cos(0)", 1},
        {"tan(0)", 0},
        {"asin(1)", kPi / 2},
        {"acos(1)", 0},
        {"atan(1)", kPi / 4},
        {"exp(0)", 1},
        {"log(1)", 0},
        {"log10(1000)", 3},
        {"pow(2, 10)", 1024},
        {"max(1, min(5, 3), 2 + 2)", 4},
        {"max (2, 9)", 9},
        {"sqrt(max(9, 4)) * 2", 6},
    });
    for (int i = 0; i < 50; ++i) {
        double small = Eval("rand(10)");
        EXPECT_TRUE(small >= 0 && small <= 10) << small;
        double full = Eval("rand(0)");
        EXPECT_TRUE(full >= 0 && full <= 4294967295.0) << full;
    }
}

TEST_F(Expression, KeepsVariablesAndStatements) {
    ExpectValues({
        {"n = 5; n * 2", 10},
        {"n", 5},
        {"1;", 1},
        {"1;;2", 2},
        {";1", 1},
        {"'a-b' * 2", 14},
        {"defined(x)", 1},
        {"DEFINED ( x )", 1},
        {"defined('a-b')", 1},
        {"defined(nope)", 0},
        {"made = 1; defined(made)", 1},
        {"(x) = 4", 4},
        {"x", 4},
    });
    EXPECT_NE(exprFindVariable(m_Context, "made"), nullptr);
    EXPECT_EQ(exprFindVariable(m_Context, "nope"), nullptr);

    // Only the chosen branch runs; && and || stop as soon as they know.
    double* y = exprSetVariable(m_Context, "y", 0);
    ExpectValues({{"0 && (y = 1)", 0},
                  {"1 || (y = 1)", 1},
                  {"1 ++ (y = 1)", 1},
                  {"0 ? (y = 1) : 2", 2},
                  {"1 ? 2 : (y = 1)", 2}});
    EXPECT_EQ(*y, 0);
    ExpectValues({{"1 && (y = 5)", 1}});
    EXPECT_EQ(*y, 5);
}

TEST_F(Expression, ProgramsReadVariablesThroughTheirHandles) {
    ExprProgram* program = exprCompile(m_Context, "x * 2 + 1");
    ASSERT_NE(program, nullptr);
    for (int v = 0; v < 5; ++v) {
        *m_X = v;
        EXPECT_EQ(exprRun(program), v * 2 + 1);
    }
    exprFreeProgram(program);

    double* counter = exprSetVariable(m_Context, "counter", 0);
    program = exprCompile(m_Context, "counter = counter + 1");
    ASSERT_NE(program, nullptr);
    for (int i = 0; i < 3; ++i)
        exprRun(program);
    EXPECT_EQ(*counter, 3);
    EXPECT_EQ(exprFindVariable(m_Context, "counter"), counter);
    exprFreeProgram(program);

    // The radix is taken when compiling.
    exprSetRadix(m_Context, 16);
    program = exprCompile(m_Context, "10");
    exprSetRadix(m_Context, 10);
    EXPECT_EQ(exprRun(program), 16);
    exprFreeProgram(program);
}

TEST_F(Expression, ManyVariablesShareTheBuckets) {
    for (int i = 0; i < 5000; ++i)
        ASSERT_NE(exprSetVariable(m_Context, Numbered("v", i).c_str(), i), nullptr);
    for (int i = 0; i < 5000; i += 97)
        EXPECT_EQ(Eval(Numbered("v", i) + " + 1"), i + 1);
    EXPECT_EQ(*exprFindVariable(m_Context, "v4999"), 4999);
}

TEST_F(Expression, ReportsErrorsWithTheirPositions) {
    ExpectErrors({
        {"foo", EXPR_ERROR_UNDEFINED, 0},
        {"1 + foo", EXPR_ERROR_UNDEFINED, 4},
        {"bar(1)", EXPR_ERROR_UNDEFINED, 0},
        {"x == nope", EXPR_ERROR_UNDEFINED, 5},
        {"X", EXPR_ERROR_UNDEFINED, 0}, // names are case-sensitive
        {"", EXPR_ERROR_SYNTAX, 0},
        {"   ", EXPR_ERROR_SYNTAX, 3},
        {"1 +", EXPR_ERROR_SYNTAX, 3},
        {"1 $ 2", EXPR_ERROR_SYNTAX, 2},
        {"1 2", EXPR_ERROR_SYNTAX, 2},
        {"1 (2)", EXPR_ERROR_SYNTAX, 2},
        {"'abc", EXPR_ERROR_SYNTAX, 0},
        {"0x", EXPR_ERROR_SYNTAX, 0},
        {"defined x", EXPR_ERROR_SYNTAX, 8},
        {"x y", EXPR_ERROR_SYNTAX, 2},
        {"max(1,)", EXPR_ERROR_SYNTAX, 6},
        {"()", EXPR_ERROR_SYNTAX, 1},
        {"*", EXPR_ERROR_SYNTAX, 0},
        {"(1", EXPR_ERROR_BRACKET, 0},
        {"1)", EXPR_ERROR_BRACKET, 1},
        {"(1]", EXPR_ERROR_BRACKET, 2},
        {"[1)", EXPR_ERROR_BRACKET, 2},
        {"x[1)", EXPR_ERROR_BRACKET, 3},
        {"(1; 2)", EXPR_ERROR_BRACKET, 0},
        {"1 ? 2", EXPR_ERROR_CONDITION, 2},
        {"1 : 2", EXPR_ERROR_CONDITION, 2},
        {"(1 ? 2)", EXPR_ERROR_CONDITION, 3},
        {"sqrt(1, 2)", EXPR_ERROR_ARGUMENTS, 0},
        {"1 + pow(1)", EXPR_ERROR_ARGUMENTS, 4},
        {"sqrt()", EXPR_ERROR_ARGUMENTS, 0},
        {"3 = 4", EXPR_ERROR_ASSIGNMENT, 2},
        {"x + 1 = 4", EXPR_ERROR_ASSIGNMENT, 6},
    });
    Eval(std::string("1 +\0 2", 6));
    EXPECT_EQ(exprErrorNumber(m_Context), EXPR_ERROR_SYNTAX);
    EXPECT_EQ(exprErrorPosition(m_Context), 3);
    Eval("1 + 1");
    EXPECT_EQ(exprErrorField(m_Context), 0) << "a good evaluation clears the error field";
}

TEST_F(Expression, PrintsTheErrorMessages) {
    g_printed.clear();
    Eval("1 + foo");
    EXPECT_EQ(g_printed, "expression - ERROR UNDEFINED SYMBOL AT POSITION 4\n");
    g_printed.clear();
    Eval("1 +");
    EXPECT_EQ(g_printed, "expression - ERROR OPERAND SYNTAX ERROR AT POSITION 3\n");
    g_printed.clear();
    Eval("(1");
    EXPECT_EQ(g_printed, "expression - ERROR # 3 AT POSITION 0\n");
    g_printed.clear();
    Eval("2 * (3 + 4)");
    EXPECT_EQ(g_printed, "");
}

TEST_F(Expression, SurvivesDeepNesting) {
    const int depth = 100000;
    EXPECT_EQ(Eval(std::string(depth, '(') + "1" + std::string(depth, ')')), 1);
    EXPECT_EQ(Eval(std::string(depth, '-') + "1"), 1);
    EXPECT_EQ(Eval(std::string(depth, '[') + "2" + std::string(depth, ']')), 2);
    std::string sum = "0";
    for (int i = 0; i < depth; ++i)
        sum += "+1";
    EXPECT_EQ(Eval(sum), depth);
    std::string calls;
    for (int i = 0; i < 10000; ++i)
        calls += "max(";
    calls += "1";
    for (int i = 0; i < 10000; ++i)
        calls += ")";
    EXPECT_EQ(Eval(calls), 1);

    std::string tooDeep(EXPR_MAX_DEPTH + 1, '(');
    ExpectErrors({{tooDeep.c_str(), EXPR_ERROR_NESTING, EXPR_MAX_DEPTH}});
    std::string unclosed(depth, '(');
    ExpectErrors({{unclosed.c_str(), EXPR_ERROR_SYNTAX, depth}});
}

TEST_F(Expression, FunctionTableHoldsAtMost512Names) {
    ExprFunction1 twice = [](double v) { return v * 2; };
    int registered = 0;
    for (int i = 0; i < 600; ++i)
        registered += exprRegisterFunction(m_Context, Numbered("f", i).c_str(), twice);
    EXPECT_EQ(registered, EXPR_MAX_FUNCTIONS - 23); // 23 built-ins came first
    const int last = EXPR_MAX_FUNCTIONS - 23 - 1;
    EXPECT_EQ(Eval(Numbered("f", last) + "(4)"), 8);
    ExpectErrors({{"f489(4)", EXPR_ERROR_UNDEFINED, 0}});
    // A known name can still be replaced when the table is full.
    ExprListFunction count = [](int n, const double*) { return double(n); };
    EXPECT_EQ(exprRegisterFunction(m_Context, "max", count), 1);
    EXPECT_EQ(Eval("max(7, 8, 9)"), 3);
    EXPECT_EQ(exprRegisterFunction(m_Context, "", twice), 0);
}

TEST(ExpressionMemory, CreationReportsOutOfMemory) {
    GPrintHook previous = gsetprinthook(capture);
    int32_t live = galloc_live_count();
    for (int allowed = 0; allowed < 12; ++allowed) {
        g_printed.clear();
        setenv("GALLOCMAX", std::to_string(live + allowed).c_str(), 1);
        galloc_reload_limit();
        EXPECT_EQ(exprCreate(), nullptr) << allowed;
        EXPECT_NE(g_printed.find("Out of memory!\n"), std::string::npos) << allowed;
        EXPECT_EQ(galloc_live_count(), live) << allowed;
    }
    unsetenv("GALLOCMAX");
    galloc_reload_limit();
    gsetprinthook(previous);
}

TEST(ExpressionMemory, CompileFailsCleanlyWhenBlocksRunOut) {
    GPrintHook previous = gsetprinthook(capture);
    int32_t live = galloc_live_count();
    ExprContext* context = exprCreate();
    ASSERT_NE(context, nullptr);
    setenv("GALLOCMAX", std::to_string(galloc_live_count()).c_str(), 1);
    galloc_reload_limit();
    g_printed.clear();
    EXPECT_EQ(exprEvaluate(context, "1 + 2"), 0);
    EXPECT_EQ(exprErrorNumber(context), EXPR_ERROR_MEMORY);
    EXPECT_EQ(g_printed.find("Out of memory!"), std::string::npos);
    EXPECT_EQ(exprEvaluate(context, "newvar = 1"), 0);
    EXPECT_EQ(exprErrorNumber(context), EXPR_ERROR_MEMORY);
    unsetenv("GALLOCMAX");
    galloc_reload_limit();
    EXPECT_EQ(exprEvaluate(context, "1 + 2"), 3);
    exprDestroy(context);
    EXPECT_EQ(galloc_live_count(), live);
    gsetprinthook(previous);
}

TEST(ExpressionTables, TokensAndPrecedence) {
    struct OperatorCase {
        const char* text;
        int token;
        size_t length;
    } operators[] = {
        {"<<", 128, 2},          {">>", 129, 2},
        {"<=", 130, 2},          {">=", 131, 2},
        {"==", 132, 2},          {"!=", 133, 2},
        {"<>", 133, 2},          {"#", 133, 1},
        {"&&", 134, 2},          {"||", 135, 2},
        {"++", 135, 2},          {"--", 136, 2},
        {"!:", 137, 2},          {"!?", 138, 2},
        {"[", 139, 1},           {"**", 140, 2},
        {"<?", 141, 2},          {">?", 142, 2},
        {"%%", 143, 2},          {"//", '%', 2},
        {"+", '+', 1},           {"~", '~', 1},
        {"!", '!', 1},           {"=", '=', 1},
        {";", ';', 1},           {"$", EXPR_TOKEN_INVALID, 1},
        {"", EXPR_TOKEN_END, 0},
    };
    for (const OperatorCase& c : operators) {
        size_t consumed = 99;
        EXPECT_EQ(exprScanOperator(c.text, strlen(c.text), &consumed), c.token) << c.text;
        EXPECT_EQ(consumed, c.length) << c.text;
    }
    struct LevelCase {
        int level;
        std::vector<int> tokens;
    } levels[] = {
        {16, {139}},
        {15, {144, 145, 146, 147, 148, 149, 150}},
        {14, {'*', '/', '%', 143}},
        {13, {'+', '-'}},
        {12, {128, 129}},
        {11, {'<', '>', 130, 131, 140}},
        {10, {132, 133}},
        {9, {'&'}},
        {8, {'^', '~'}},
        {7, {'|', '!'}},
        {6, {134, 141, 142}},
        {5, {135, 136}},
        {4, {'?', ':', 137, 138}},
        {3, {'='}},
        {2, {',', ')', ']'}},
        {1, {0, '(', '[', ';'}},
        {0, {'$', 'a', '1', EXPR_TOKEN_INVALID, 151}},
    };
    for (const LevelCase& level : levels)
        for (int token : level.tokens)
            EXPECT_EQ(exprPrecedence(token), level.level) << token;
}
