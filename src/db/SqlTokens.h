#pragma once

#include <QString>
#include <vector>

namespace yunqi {

// The lexical pieces of an SQL text, enough to rewrite it without touching
// string literals. Concatenating the texts of all tokens gives the input back.
struct SqlToken {
    enum Kind { Space, Word, Literal, Number, Punct };
    Kind kind;
    QString text;

    bool IsPunct(char c) const { return kind == Punct && text.size() == 1 && text[0] == c; }
    // A keyword or name compared without regard to case.
    bool IsWord(QStringView word) const;
    // The name a word stands for: [x] and "x" without their quotes.
    QString Name() const;
};

// Blanks and comments are Space; 'x' (with '' inside) is Literal; [x], "x" and
// runs of letters, digits, _, @, # and $ are Word; a run starting with a digit
// is Number; anything else is one Punct character.
std::vector<SqlToken> TokenizeSql(const QString& sql);

}  // namespace yunqi
