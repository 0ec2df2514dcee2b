// The arithmetic of skins. Every number in a skin file is an expression, as in `x="kLeft + 12*3"`, evaluated
// in double precision against a table of named constants; `w = 100` is worth 100 and defines `w` in passing.
//
// The language has one trait that skins rely on: a closing parenthesis ends the expression. A group works as
// the last operand (`2*(3+4)` is 14) and nowhere else (`(2)+3` is 2, `(1+2)*3` is 3).
//
// Neither operation keeps state beyond the table, which belongs to one pass over one skin on one thread.
#pragma once

#include "skin_language/grow_array.h"

#include <cstdint>

/// One constant.
struct ExprEntry {
    /// Of the name without regard to case; spares most comparisons of names.
    std::uint8_t hash = 0;
    /// As first defined.
    char name[60] = {};
    double value = 0.0;
};

/// Constants in the order in which they were first defined; none is ever removed. Names differ in more than
/// case.
using ExprTable = GrowArray<ExprEntry>;

/// Evaluates the expression or assignment at `*position` of the NUL-terminated `text` into `*result`. What
/// follows the expression is ignored, and a missing operand counts as 0. Gives false, with the table and
/// `*result` unchanged, for an unknown name, a second point in a number, an expression too involved for any
/// skin, or if memory is out.
///
/// `*position` moves as `exprParse` tells. Ends the process if a name at the head of the text reaches to
/// position 59 or beyond.
bool exprEvaluate(ExprTable* table, const char* text, int* position, double* result);

/// Evaluates from `*position` as far as operators bind tighter than `minPriority`: shift `$` 15, and `&` 16,
/// or `|` 17, `+` and `-` 18, `*` and `/` 19. No assignment. Fails as `exprEvaluate` does.
///
/// `*position` moves to the byte where reading stopped, unless an operator was applied and a byte that is
/// none ended the expression: then it stays. Ends the process at a name of 60 bytes or more.
bool exprParse(ExprTable* table, const char* text, int* position, double* result, int minPriority);

/// The value of the constant `name`, in any case, into `*value`; false if there is none.
bool exprLookup(ExprTable* table, const char* name, double* value);
