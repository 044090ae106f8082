#include "session/tsql/TSqlTokenizer.h"

#include <QStringList>

namespace knjige::tsql
{

bool Token::is(const char* word) const
{
    if (kind != Kind::Word && kind != Kind::Symbol)
        return false;
    return text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

QString Token::name() const
{
    if (kind != Kind::Quoted)
        return text;
    const QChar close = text.startsWith(u'[') ? u']' : u'"';
    QString inner = text.mid(1, text.endsWith(close) ? text.size() - 2 : text.size() - 1);
    return inner.replace(QString(2, close), QString(close));
}

QString Token::stringValue() const
{
    const int open = kind == Kind::NString ? 2 : 1;
    const bool closed = text.size() > open && text.endsWith(u'\'');
    QString inner = text.mid(open, text.size() - open - (closed ? 1 : 0));
    return inner.replace(QStringLiteral("''"), QStringLiteral("'"));
}

QString quoteString(const QString& value)
{
    QString v = value;
    return u'\'' + v.replace(u'\'', QStringLiteral("''")) + u'\'';
}

namespace
{

bool isWordStart(QChar c)
{
    return c.isLetter() || c == u'_' || c == u'@' || c == u'#';
}
bool isWordPart(QChar c)
{
    return c.isLetterOrNumber() || c == u'_' || c == u'@' || c == u'#' || c == u'$';
}

// Index just past a quoted run that starts at `i` with `open` and ends with `close`,
// where a doubled `close` stands for itself.
int skipQuoted(const QString& s, int i, QChar close)
{
    ++i;
    while (i < s.size()) {
        if (s[i] == close) {
            if (i + 1 < s.size() && s[i + 1] == close) {
                i += 2;
                continue;
            }
            return i + 1;
        }
        ++i;
    }
    return i;
}

int skipNumber(const QString& s, int i)
{
    while (i < s.size() && s[i].isDigit())
        ++i;
    if (i < s.size() && s[i] == u'.') {
        ++i;
        while (i < s.size() && s[i].isDigit())
            ++i;
    }
    if (i < s.size() && (s[i] == u'e' || s[i] == u'E')) {
        int j = i + 1;
        if (j < s.size() && (s[j] == u'+' || s[j] == u'-'))
            ++j;
        if (j < s.size() && s[j].isDigit()) {
            while (j < s.size() && s[j].isDigit())
                ++j;
            i = j;
        }
    }
    return i;
}

int symbolLength(const QString& s, int i)
{
    static const char* const twoChar[] = { "<>", "!=", "<=", ">=", "||", "!<", "!>" };
    if (i + 1 < s.size()) {
        const QString pair = s.mid(i, 2);
        for (const char* t : twoChar)
            if (pair == QLatin1String(t))
                return 2;
    }
    return 1;
}

} // namespace

QVector<Token> tokenize(const QString& s)
{
    QVector<Token> out;
    int i = 0;
    while (i < s.size()) {
        const QChar c = s[i];
        const QChar next = i + 1 < s.size() ? s[i + 1] : QChar();
        Token::Kind kind;
        int end;
        if (c.isSpace()) {
            kind = Token::Kind::Space;
            end = i + 1;
            while (end < s.size() && s[end].isSpace())
                ++end;
        } else if (c == u'-' && next == u'-') {
            kind = Token::Kind::Comment;
            end = s.indexOf(u'\n', i);
            end = end < 0 ? s.size() : end;
        } else if (c == u'/' && next == u'*') {
            kind = Token::Kind::Comment;
            end = s.indexOf(QStringLiteral("*/"), i + 2);
            end = end < 0 ? s.size() : end + 2;
        } else if (c == u'\'') {
            kind = Token::Kind::String;
            end = skipQuoted(s, i, u'\'');
        } else if ((c == u'N' || c == u'n') && next == u'\'') {
            kind = Token::Kind::NString;
            end = skipQuoted(s, i + 1, u'\'');
        } else if (c == u'[') {
            kind = Token::Kind::Quoted;
            end = skipQuoted(s, i, u']');
        } else if (c == u'"') {
            kind = Token::Kind::Quoted;
            end = skipQuoted(s, i, u'"');
        } else if (c.isDigit() || (c == u'.' && next.isDigit())) {
            kind = Token::Kind::Number;
            end = skipNumber(s, i);
        } else if (isWordStart(c)) {
            kind = Token::Kind::Word;
            end = i + 1;
            while (end < s.size() && isWordPart(s[end]))
                ++end;
        } else if (c == u'?') {
            kind = Token::Kind::Param;
            end = i + 1;
        } else {
            kind = Token::Kind::Symbol;
            end = i + symbolLength(s, i);
        }
        out.push_back(Token { kind, s.mid(i, end - i) });
        i = end;
    }
    return out;
}

QStringList splitStatements(const QString& sql)
{
    QStringList out;
    QString current;
    int depth = 0;
    bool create = false; // the statement began with CREATE: a trigger body may follow
    bool started = false;
    for (const Token& t : tokenize(sql)) {
        if (!t.isTrivia() && !started) {
            started = true;
            create = t.is("CREATE");
        }
        // A trigger body (BEGIN ... END) keeps its ';'. CASE ... END is counted too, so
        // that its END does not close the BEGIN.
        if (t.is("(") || (create && (t.is("BEGIN") || t.is("CASE")))) {
            ++depth;
        } else if (t.is(")") || (create && t.is("END"))) {
            --depth;
        } else if (t.is(";") && depth <= 0) {
            if (!current.trimmed().isEmpty())
                out << current;
            current.clear();
            started = false;
            depth = 0;
            continue;
        }
        current += t.text;
    }
    if (!current.trimmed().isEmpty())
        out << current;
    return out;
}

} // namespace knjige::tsql
