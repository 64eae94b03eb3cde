// The interpreter of compiled programs and the arithmetic of each operator.
// A program has been checked while compiling, so running it cannot fail:
// every operator finds its operands and the stack was sized beforehand.

#include "imaging/expr/expr_internal.h"

#include <cmath>

namespace {

int64_t shiftRight(int64_t value, int64_t count);

// Unsigned arithmetic keeps shifting negative values well defined.
int64_t shiftLeft(int64_t value, int64_t count) {
    if (count < 0) return shiftRight(value, count == INT64_MIN ? INT64_MAX : -count);
    if (count >= 64) return 0;
    return static_cast<int64_t>(static_cast<uint64_t>(value) << count);
}

int64_t shiftRight(int64_t value, int64_t count) {
    if (count < 0) return shiftLeft(value, count == INT64_MIN ? INT64_MAX : -count);
    if (count >= 64) return value < 0 ? -1 : 0;
    return value >> count;
}

// The floor-based remainder: the result takes the sign of the divisor.
double floorRemainder(double a, double b) {
    double r = std::fmod(a, b);
    if (r != 0 && ((r < 0) != (b < 0))) r += b;
    return r;
}

double truth(bool value) {
    return value ? 1.0 : 0.0;
}

double bits(int64_t value) {
    return static_cast<double>(value);
}

} // namespace

int64_t exprToInt64(double value) {
    if (value != value) return 0;
    if (value >= 9223372036854775807.0) return INT64_MAX;
    if (value <= -9223372036854775808.0) return INT64_MIN;
    return static_cast<int64_t>(value);
}

double exprApplyUnary(int token, double v) {
    switch (token) {
    case EXPR_TOKEN_NEGATE:
        return -v;
    case EXPR_TOKEN_COMPLEMENT:
        return bits(~exprToInt64(v));
    case EXPR_TOKEN_NOT:
        return truth(v == 0);
    case EXPR_TOKEN_FLOOR:
        return std::floor(v);
    case EXPR_TOKEN_CEIL:
        return std::ceil(v);
    case EXPR_TOKEN_SHL1:
        return bits(shiftLeft(exprToInt64(v), 1));
    case EXPR_TOKEN_SHR1:
        return bits(shiftRight(exprToInt64(v), 1));
    default:
        return v;
    }
}

double exprApplyBinary(int token, double a, double b) {
    switch (token) {
    case '*':
        return a * b;
    case '/':
        return a / b;
    case '%':
        return floorRemainder(a, b);
    case EXPR_TOKEN_FMOD:
        return std::fmod(a, b);
    case '+':
    case EXPR_TOKEN_INDEX:
        return a + b;
    case '-':
        return a - b;
    case EXPR_TOKEN_SHL:
        return bits(shiftLeft(exprToInt64(a), exprToInt64(b)));
    case EXPR_TOKEN_SHR:
        return bits(shiftRight(exprToInt64(a), exprToInt64(b)));
    case '<':
        return truth(a < b);
    case '>':
        return truth(a > b);
    case EXPR_TOKEN_LE:
        return truth(a <= b);
    case EXPR_TOKEN_GE:
        return truth(a >= b);
    case EXPR_TOKEN_POW:
        return std::pow(a, b);
    case EXPR_TOKEN_EQ:
        return truth(a == b);
    case EXPR_TOKEN_NE:
        return truth(a != b);
    case '&':
        return bits(exprToInt64(a) & exprToInt64(b));
    case '^':
    case '~':
        return bits(exprToInt64(a) ^ exprToInt64(b));
    case '|':
    case '!':
        return bits(exprToInt64(a) | exprToInt64(b));
    case EXPR_TOKEN_AND:
        return truth(a != 0 && b != 0);
    case EXPR_TOKEN_OR:
        return truth(a != 0 || b != 0);
    case EXPR_TOKEN_XOR:
        return truth((a != 0) != (b != 0));
    case EXPR_TOKEN_MIN:
        return b < a ? b : a; // ties keep the left value
    case EXPR_TOKEN_MAX:
        return b > a ? b : a;
    default:
        return a;
    }
}

double exprRun(ExprProgram* program) {
    if (!program) return 0.0;
    const ExprInstruction* code = program->code;
    double* sp = program->stack; // next free slot
    for (int32_t pc = 0;; ++pc) {
        const ExprInstruction& in = code[pc];
        switch (in.opcode) {
        case EXPR_OP_CONSTANT:
            *sp++ = in.constant;
            break;
        case EXPR_OP_LOAD:
            *sp++ = *in.variable;
            break;
        case EXPR_OP_STORE:
            --sp;
            sp[-1] = *in.variable = sp[0];
            break;
        case EXPR_OP_SEQUENCE:
            --sp;
            sp[-1] = sp[0];
            break;
        case EXPR_OP_DROP:
            --sp;
            break;
        case EXPR_OP_JUMP:
            pc = in.argument - 1;
            break;
        case EXPR_OP_JUMP_IF_ZERO:
            if (*--sp == 0) pc = in.argument - 1;
            break;
        case EXPR_OP_AND_SKIP:
            if (*--sp == 0) {
                *sp++ = 0.0;
                pc = in.argument - 1;
            }
            break;
        case EXPR_OP_OR_SKIP:
            if (*--sp != 0) {
                *sp++ = 1.0;
                pc = in.argument - 1;
            }
            break;
        case EXPR_OP_TRUTH:
            sp[-1] = truth(sp[-1] != 0);
            break;
        case EXPR_OP_CALL_LIST:
            sp -= in.argument;
            *sp = in.list(in.argument, sp);
            ++sp;
            break;
        case EXPR_OP_CALL_DIRECT1:
            sp[-1] = in.direct1(sp[-1]);
            break;
        case EXPR_OP_CALL_DIRECT2:
            --sp;
            sp[-1] = in.direct2(sp[-1], sp[0]);
            break;
        case EXPR_OP_END:
            return sp[-1];
        default:
            if (in.opcode >= EXPR_TOKEN_NEGATE && in.opcode <= EXPR_TOKEN_SHR1) {
                sp[-1] = exprApplyUnary(in.opcode, sp[-1]);
            } else {
                --sp;
                sp[-1] = exprApplyBinary(in.opcode, sp[-1], sp[0]);
            }
            break;
        }
    }
}
