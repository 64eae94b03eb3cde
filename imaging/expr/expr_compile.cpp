// The compiler: operator-precedence parsing with an explicit operator stack
// and operand stack (no recursion, so nesting depth costs memory, never the
// call stack), emitting a postfix program with jumps for the conditional
// and the short-circuit operators.

#include "imaging/expr/expr_internal.h"

#include "imaging/galloc.h"

#include <climits>
#include <cstring>
#include <strings.h>

namespace {

constexpr int32_t kMaxInstructions = 1 << 26;
constexpr char kKeywordDefined[] = "defined";

bool isReducible(const ExprOperator& op) {
    return op.kind == EXPR_KIND_PLAIN || op.kind == EXPR_KIND_COLON ||
           op.kind == EXPR_KIND_SHORTCUT;
}

bool isUnaryToken(int token) {
    return token >= EXPR_TOKEN_NEGATE && token <= EXPR_TOKEN_SHR1;
}

class Compiler {
  public:
    Compiler(ExprContext* context, const char* text, size_t length)
        : m_Context(context), m_Text(text), m_Length(length) {}
    ExprProgram* Compile();

  private:
    enum Step { kOperand, kOperator, kFinished, kFailed };

    Step OperandStep(bool& statementStart);
    Step OperatorStep(bool& statementStart);
    Step NameOperand(const char* name, int32_t length, size_t namePos);
    Step DefinedOperand();
    Step CallOperand(int function, size_t namePos);
    bool ReadName(const char** name, int32_t* length);
    bool WordIsNumber(size_t at) const;
    Step CloseStatement();
    Step CloseBracket(int token, size_t at);
    Step Comma(size_t at);
    Step Question(size_t at);
    Step Colon(size_t at);
    Step Binary(int token, int precedence, size_t at);
    bool ReduceWhile(int precedence, bool inclusive);
    bool Apply(const ExprOperator& op);
    bool FinishCall(const ExprOperator& call, int32_t count);
    ExprProgram* Build();

    // Small helpers over the context's scratch arrays.
    bool Fail(int number, size_t position);
    ExprInstruction* Emit(int32_t opcode, int32_t argument = 0);
    bool EmitConstant(double value);
    bool PushOperand(double* variable);
    ExprOperand PopOperand();
    bool PushOperator(int token, int kind, size_t position, int32_t patch = 0);
    ExprOperator* Top();
    void PopOperator() { --m_Context->operators.count; }
    void Patch(int32_t instruction) {
        exprArrayAt<ExprInstruction>(m_Context->code, instruction)->argument =
            m_Context->code.count;
    }
    void SkipSpaces() {
        while (m_Pos < m_Length && exprIsSpace(m_Text[m_Pos]))
            ++m_Pos;
    }
    char Peek() const { return m_Pos < m_Length ? m_Text[m_Pos] : '\0'; }
    bool AtEnd() const { return m_Pos >= m_Length; }

    ExprContext* m_Context;
    const char* m_Text;
    size_t m_Length;
    size_t m_Pos = 0;
    int32_t m_MaxDepth = 0;
    bool m_Failed = false;
};

// ---- Scratch helpers ---------------------------------------------------------

bool Compiler::Fail(int number, size_t position) {
    if (!m_Failed) exprReportError(m_Context, number, static_cast<int64_t>(position));
    m_Failed = true;
    return false;
}

ExprInstruction* Compiler::Emit(int32_t opcode, int32_t argument) {
    bool outOfMemory = false;
    auto* in = static_cast<ExprInstruction*>(
        exprArrayPush(&m_Context->code, kMaxInstructions, &outOfMemory));
    if (!in) {
        Fail(EXPR_ERROR_MEMORY, m_Pos);
        return nullptr;
    }
    memset(static_cast<void*>(in), 0, sizeof *in);
    in->opcode = opcode;
    in->argument = argument;
    return in;
}

bool Compiler::EmitConstant(double value) {
    ExprInstruction* in = Emit(EXPR_OP_CONSTANT);
    if (!in) return false;
    in->constant = value;
    return PushOperand(nullptr);
}

bool Compiler::PushOperand(double* variable) {
    bool outOfMemory = false;
    auto* slot = static_cast<ExprOperand*>(
        exprArrayPush(&m_Context->operands, EXPR_MAX_DEPTH, &outOfMemory));
    if (!slot) return Fail(outOfMemory ? EXPR_ERROR_MEMORY : EXPR_ERROR_NESTING, m_Pos);
    slot->variable = variable;
    if (m_Context->operands.count > m_MaxDepth) m_MaxDepth = m_Context->operands.count;
    return true;
}

ExprOperand Compiler::PopOperand() {
    // The parser only pops what it pushed: every operator finds its operands.
    return *exprArrayAt<ExprOperand>(m_Context->operands, --m_Context->operands.count);
}

bool Compiler::PushOperator(int token, int kind, size_t position, int32_t patch) {
    bool outOfMemory = false;
    auto* op = static_cast<ExprOperator*>(
        exprArrayPush(&m_Context->operators, EXPR_MAX_DEPTH, &outOfMemory));
    if (!op) return Fail(outOfMemory ? EXPR_ERROR_MEMORY : EXPR_ERROR_NESTING, position);
    op->token = token;
    op->precedence = exprPrecedence(token);
    op->kind = kind;
    op->position = position > INT_MAX ? INT_MAX : static_cast<int32_t>(position);
    op->patch = patch;
    op->count = 0;
    return true;
}

ExprOperator* Compiler::Top() {
    ExprArray& ops = m_Context->operators;
    return ops.count ? exprArrayAt<ExprOperator>(ops, ops.count - 1) : nullptr;
}

// ---- Operands ----------------------------------------------------------------

Compiler::Step Compiler::OperandStep(bool& statementStart) {
    if (statementStart) {
        if (AtEnd()) {
            if (m_Context->operands.count > 0) return kFinished;
            Fail(EXPR_ERROR_SYNTAX, m_Pos);
            return kFailed;
        }
        if (Peek() == ';') { // empty statement
            ++m_Pos;
            return kOperand;
        }
        if (m_Context->operands.count > 0) { // the previous statement's value
            if (!Emit(EXPR_OP_DROP)) return kFailed;
            PopOperand();
        }
        statementStart = false;
    }
    if (AtEnd()) {
        Fail(EXPR_ERROR_SYNTAX, m_Pos);
        return kFailed;
    }
    size_t at = m_Pos;
    char c = m_Text[at];
    if (c == '+') { // unary plus changes nothing
        ++m_Pos;
        return kOperand;
    }
    size_t consumed = 0;
    if (int unary = exprScanUnary(m_Text, m_Length, at, &consumed)) {
        m_Pos += consumed;
        return PushOperator(unary, EXPR_KIND_PLAIN, at) ? kOperand : kFailed;
    }
    if (c == '(' || c == '[') {
        ++m_Pos;
        return PushOperator(c, EXPR_KIND_GROUP, at) ? kOperand : kFailed;
    }
    double value = 0;
    bool number = !exprIsNameStart(c) || WordIsNumber(at);
    if (number && exprScanNumber(m_Text, m_Length, &m_Pos, m_Context->radix, &value))
        return EmitConstant(value) ? kOperator : kFailed;
    const char* name = nullptr;
    int32_t length = 0;
    if (c == '\'' || exprIsNameStart(c)) {
        if (!ReadName(&name, &length)) return kFailed;
        bool keyword = c != '\'' && length == 7 && strncasecmp(name, kKeywordDefined, 7) == 0;
        return keyword ? DefinedOperand() : NameOperand(name, length, at);
    }
    Fail(EXPR_ERROR_SYNTAX, at);
    return kFailed;
}

// A word that starts with a letter is a number when every letter and digit
// of it is a digit of the radix: with radix 16 "ff" and "a" are numbers,
// while "exp" and "defined" stay names.
bool Compiler::WordIsNumber(size_t at) const {
    for (size_t k = at; k < m_Length && exprIsNameChar(m_Text[k]); ++k)
        if (m_Text[k] == '_' || exprDigitValue(m_Text[k]) >= m_Context->radix) return false;
    return true;
}

// A plain name, or the text between single quotes.
bool Compiler::ReadName(const char** name, int32_t* length) {
    size_t start = m_Pos;
    if (Peek() == '\'') {
        const void* close = memchr(m_Text + start + 1, '\'', m_Length - start - 1);
        if (!close) return Fail(EXPR_ERROR_SYNTAX, start);
        size_t end = static_cast<const char*>(close) - m_Text;
        if (end - start - 1 > INT32_MAX) return Fail(EXPR_ERROR_MEMORY, start);
        *name = m_Text + start + 1;
        *length = static_cast<int32_t>(end - start - 1);
        m_Pos = end + 1;
        return true;
    }
    if (!exprIsNameStart(Peek())) return Fail(EXPR_ERROR_SYNTAX, start);
    while (m_Pos < m_Length && exprIsNameChar(m_Text[m_Pos]))
        ++m_Pos;
    if (m_Pos - start > INT32_MAX) return Fail(EXPR_ERROR_MEMORY, start);
    *name = m_Text + start;
    *length = static_cast<int32_t>(m_Pos - start);
    return true;
}

Compiler::Step Compiler::NameOperand(const char* name, int32_t length, size_t namePos) {
    SkipSpaces();
    if (Peek() == '(') {
        int function = exprFindFunction(m_Context, name, length);
        if (function < 0) {
            Fail(EXPR_ERROR_UNDEFINED, namePos);
            return kFailed;
        }
        ++m_Pos;
        return CallOperand(function, namePos);
    }
    ExprSymbol* symbol = exprLookupSymbol(m_Context, name, length);
    if (!symbol) {
        bool assigned = Peek() == '=' && (m_Pos + 1 >= m_Length || m_Text[m_Pos + 1] != '=');
        if (!assigned) {
            Fail(EXPR_ERROR_UNDEFINED, namePos);
            return kFailed;
        }
        symbol = exprCreateSymbol(m_Context, name, length);
        if (!symbol) {
            Fail(EXPR_ERROR_MEMORY, namePos);
            return kFailed;
        }
    }
    ExprInstruction* in = Emit(EXPR_OP_LOAD);
    if (!in) return kFailed;
    in->variable = &symbol->value;
    return PushOperand(&symbol->value) ? kOperator : kFailed;
}

Compiler::Step Compiler::CallOperand(int function, size_t namePos) {
    if (!PushOperator('(', EXPR_KIND_CALL, namePos, function)) return kFailed;
    SkipSpaces();
    if (Peek() != ')') return kOperand;
    ++m_Pos; // no arguments
    ExprOperator call = *Top();
    PopOperator();
    return FinishCall(call, 0) ? kOperator : kFailed;
}

// defined(name): decided now, as variables are never removed.
Compiler::Step Compiler::DefinedOperand() {
    SkipSpaces();
    if (Peek() != '(') {
        Fail(EXPR_ERROR_SYNTAX, m_Pos);
        return kFailed;
    }
    ++m_Pos;
    SkipSpaces();
    const char* name = nullptr;
    int32_t length = 0;
    if (!ReadName(&name, &length)) return kFailed;
    SkipSpaces();
    if (Peek() != ')') {
        Fail(EXPR_ERROR_SYNTAX, m_Pos);
        return kFailed;
    }
    ++m_Pos;
    bool exists = exprLookupSymbol(m_Context, name, length) != nullptr;
    return EmitConstant(exists ? 1.0 : 0.0) ? kOperator : kFailed;
}

// ---- Operators ---------------------------------------------------------------

Compiler::Step Compiler::OperatorStep(bool& statementStart) {
    size_t at = m_Pos;
    size_t consumed = 0;
    int token = exprScanOperator(m_Text + at, m_Length - at, &consumed);
    int precedence = exprPrecedence(token);
    if (precedence == 0 || token == '(') {
        Fail(EXPR_ERROR_SYNTAX, at);
        return kFailed;
    }
    m_Pos += consumed;
    switch (token) {
    case EXPR_TOKEN_END:
        return CloseStatement() == kFailed ? kFailed : kFinished;
    case ';':
        statementStart = true;
        return CloseStatement();
    case ')':
    case ']':
        return CloseBracket(token, at);
    case ',':
        return Comma(at);
    case '?':
    case EXPR_TOKEN_QUESTION:
        return Question(at);
    case ':':
    case EXPR_TOKEN_COLON:
        return Colon(at);
    case EXPR_TOKEN_INDEX: // nothing binds tighter, so nothing to reduce first
        return PushOperator(token, EXPR_KIND_INDEX, at) ? kOperand : kFailed;
    default:
        return Binary(token, precedence, at);
    }
}

Compiler::Step Compiler::Binary(int token, int precedence, size_t at) {
    bool rightToLeft = token == '=';
    if (!ReduceWhile(precedence, !rightToLeft)) return kFailed;
    if (token == EXPR_TOKEN_AND || token == EXPR_TOKEN_OR) {
        // The left value decides alone when it is 0 for && or non-zero for ||.
        int32_t jump = m_Context->code.count;
        if (!Emit(token == EXPR_TOKEN_AND ? EXPR_OP_AND_SKIP : EXPR_OP_OR_SKIP)) return kFailed;
        PopOperand();
        return PushOperator(token, EXPR_KIND_SHORTCUT, at, jump) ? kOperand : kFailed;
    }
    return PushOperator(token, EXPR_KIND_PLAIN, at) ? kOperand : kFailed;
}

bool Compiler::ReduceWhile(int precedence, bool inclusive) {
    for (ExprOperator* top = Top(); top && isReducible(*top); top = Top()) {
        if (top->precedence < precedence || (top->precedence == precedence && !inclusive)) break;
        ExprOperator op = *top;
        PopOperator();
        if (!Apply(op)) return false;
    }
    return true;
}

Compiler::Step Compiler::CloseStatement() {
    if (!ReduceWhile(0, true)) return kFailed;
    if (ExprOperator* open = Top()) {
        bool question = open->kind == EXPR_KIND_QUESTION;
        Fail(question ? EXPR_ERROR_CONDITION : EXPR_ERROR_BRACKET, open->position);
        return kFailed;
    }
    return kOperand;
}

Compiler::Step Compiler::CloseBracket(int token, size_t at) {
    if (!ReduceWhile(0, true)) return kFailed;
    ExprOperator* open = Top();
    if (open && open->kind == EXPR_KIND_QUESTION) {
        Fail(EXPR_ERROR_CONDITION, open->position);
        return kFailed;
    }
    bool round = open && (open->kind == EXPR_KIND_CALL ||
                          (open->kind == EXPR_KIND_GROUP && open->token == '('));
    bool square = open && (open->kind == EXPR_KIND_INDEX ||
                           (open->kind == EXPR_KIND_GROUP && open->token == '['));
    if (token == ')' ? !round : !square) {
        Fail(EXPR_ERROR_BRACKET, at);
        return kFailed;
    }
    ExprOperator op = *open;
    PopOperator();
    if (op.kind == EXPR_KIND_CALL) return FinishCall(op, op.count + 1) ? kOperator : kFailed;
    if (op.kind == EXPR_KIND_INDEX) { // a[b] is a + b
        if (!Emit('+')) return kFailed;
        PopOperand();
    }
    return kOperator;
}

Compiler::Step Compiler::Comma(size_t at) {
    if (!ReduceWhile(exprPrecedence(','), true)) return kFailed;
    ExprOperator* top = Top();
    if (top && top->kind == EXPR_KIND_CALL) {
        ++top->count;
        return kOperand;
    }
    return PushOperator(',', EXPR_KIND_PLAIN, at) ? kOperand : kFailed;
}

Compiler::Step Compiler::Question(size_t at) {
    if (!ReduceWhile(exprPrecedence('?'), false)) return kFailed;
    int32_t jump = m_Context->code.count;
    if (!Emit(EXPR_OP_JUMP_IF_ZERO)) return kFailed;
    PopOperand();
    return PushOperator('?', EXPR_KIND_QUESTION, at, jump) ? kOperand : kFailed;
}

Compiler::Step Compiler::Colon(size_t at) {
    // The middle branch runs from its '?' to here, like a bracketed
    // expression: finish all of it, inner complete conditionals included.
    if (!ReduceWhile(0, true)) return kFailed;
    ExprOperator* question = Top();
    if (!question || question->kind != EXPR_KIND_QUESTION) {
        Fail(EXPR_ERROR_CONDITION, at);
        return kFailed;
    }
    int32_t jump = m_Context->code.count;
    if (!Emit(EXPR_OP_JUMP)) return kFailed;
    Patch(question->patch);
    PopOperand(); // the else branch pushes into the same slot
    question->kind = EXPR_KIND_COLON;
    question->token = ':';
    question->patch = jump;
    question->position = at > INT_MAX ? INT_MAX : static_cast<int32_t>(at);
    return kOperand;
}

bool Compiler::Apply(const ExprOperator& op) {
    if (op.kind == EXPR_KIND_COLON) {
        Patch(op.patch);
    } else if (op.kind == EXPR_KIND_SHORTCUT) {
        if (!Emit(EXPR_OP_TRUTH)) return false;
        Patch(op.patch);
    } else if (isUnaryToken(op.token)) {
        if (!Emit(op.token)) return false;
    } else if (op.token == '=') {
        PopOperand();
        ExprOperand target = PopOperand();
        if (!target.variable) return Fail(EXPR_ERROR_ASSIGNMENT, op.position);
        ExprInstruction* in = Emit(EXPR_OP_STORE);
        if (!in) return false;
        in->variable = target.variable;
        return PushOperand(nullptr);
    } else {
        if (!Emit(op.token == ',' ? EXPR_OP_SEQUENCE : op.token)) return false;
        PopOperand();
    }
    // The result replaces the top operand and is no longer a variable.
    exprArrayAt<ExprOperand>(m_Context->operands, m_Context->operands.count - 1)->variable =
        nullptr;
    return true;
}

bool Compiler::FinishCall(const ExprOperator& call, int32_t count) {
    const ExprFunctionEntry& function = m_Context->functions[call.patch];
    if (function.kind == EXPR_FUNCTION_DIRECT && count != function.arity)
        return Fail(EXPR_ERROR_ARGUMENTS, call.position);
    ExprInstruction* in = nullptr;
    if (function.kind == EXPR_FUNCTION_LIST) {
        if ((in = Emit(EXPR_OP_CALL_LIST, count))) in->list = function.list;
    } else if (function.arity == 1) {
        if ((in = Emit(EXPR_OP_CALL_DIRECT1, count))) in->direct1 = function.direct1;
    } else {
        if ((in = Emit(EXPR_OP_CALL_DIRECT2, count))) in->direct2 = function.direct2;
    }
    if (!in) return false;
    m_Context->operands.count -= count;
    return PushOperand(nullptr);
}

// ---- Driver ------------------------------------------------------------------

ExprProgram* Compiler::Compile() {
    m_Context->errorField = 0;
    m_Context->errorNumber = EXPR_ERROR_NONE;
    m_Context->errorPosition = 0;
    m_Context->operators.count = 0;
    m_Context->operands.count = 0;
    m_Context->code.count = 0;
    bool statementStart = true;
    Step step = kOperand;
    while (step == kOperand || step == kOperator) {
        SkipSpaces();
        step = step == kOperand ? OperandStep(statementStart) : OperatorStep(statementStart);
    }
    if (step == kFailed || !Emit(EXPR_OP_END)) return nullptr;
    return Build();
}

ExprProgram* Compiler::Build() {
    const ExprArray& code = m_Context->code;
    int64_t size = int64_t{sizeof(ExprProgram)} + int64_t{code.count} * sizeof(ExprInstruction) +
                   int64_t{m_MaxDepth + 1} * sizeof(double);
    if (size > INT32_MAX) {
        Fail(EXPR_ERROR_MEMORY, m_Pos);
        return nullptr;
    }
    auto* program = static_cast<ExprProgram*>(galloc(static_cast<int32_t>(size)));
    if (!program) {
        Fail(EXPR_ERROR_MEMORY, m_Pos);
        return nullptr;
    }
    program->instructionCount = code.count;
    program->stackSize = m_MaxDepth + 1;
    program->code = reinterpret_cast<ExprInstruction*>(program + 1);
    program->stack = reinterpret_cast<double*>(program->code + code.count);
    memcpy(static_cast<void*>(program->code), code.data, code.count * sizeof(ExprInstruction));
    return program;
}

} // namespace

ExprProgram* exprCompile(ExprContext* context, const char* text, size_t length) {
    if (!context) return nullptr;
    if (!text) length = 0;
    Compiler compiler(context, text ? text : "", length);
    return compiler.Compile();
}

ExprProgram* exprCompile(ExprContext* context, const char* text) {
    return exprCompile(context, text, text ? strlen(text) : 0);
}

void exprFreeProgram(ExprProgram* program) {
    if (program) gfree(program);
}

double exprEvaluate(ExprContext* context, const char* text, size_t length) {
    ExprProgram* program = exprCompile(context, text, length);
    if (!program) return 0.0;
    double value = exprRun(program);
    exprFreeProgram(program);
    return value;
}

double exprEvaluate(ExprContext* context, const char* text) {
    return exprEvaluate(context, text, text ? strlen(text) : 0);
}
