#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace knjige::tsql
{

// One lexical piece of a T-SQL text. Whitespace and comments are kept as tokens of
// their own so that a rewritten statement keeps the layout of the original.
struct Token {
    enum class Kind {
        Space, // blanks, line breaks
        Comment, // -- to the end of the line, or /* ... */
        Word, // identifier or keyword: letters (any script), digits, _, @, #, $
        Quoted, // [name] or "name"
        String, // '...' with '' inside
        NString, // N'...'
        Number, // 12, 12.5, .5, 1e3
        Param, // ?
        Symbol, // operators and punctuation: ( ) , . ; = <> != <= >= + - * / % || ...
    };
    Kind kind = Kind::Symbol;
    QString text; // exactly as written

    bool isTrivia() const { return kind == Kind::Space || kind == Kind::Comment; }
    // Case-insensitive test of a word or symbol.
    bool is(const char* word) const;
    // The name a Word or Quoted token stands for, without brackets or quotes.
    QString name() const;
    // The value of a String or NString literal, '' undoubled.
    QString stringValue() const;
};

// Splits the text into tokens that, joined, give the text back unchanged. An
// unterminated literal, bracket or comment runs to the end of the text.
QVector<Token> tokenize(const QString& sql);

// Splits a text into its statements at the ';' outside literals and parentheses.
QStringList splitStatements(const QString& sql);

// 'text' with every ' doubled.
QString quoteString(const QString& value);

} // namespace knjige::tsql
