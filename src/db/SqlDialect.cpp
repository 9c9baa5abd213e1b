#include "db/SqlDialect.h"

#include <QHash>
#include <QSet>
#include <optional>
#include <utility>

#include "core/RuntimeError.h"
#include "db/EmbeddedSchema.h"
#include "db/SqlTokens.h"

namespace yunqi {

namespace {

using Columns = QSet<QString>;  // lower-case names
using Range = std::pair<int, int>;

QString Key(const QString& name) { return name.toLower(); }

// The blanks and comments left out: positions below are indexes of this list,
// with the matching bracket of every "(" and an output text per token.
class Rewriter {
  public:
    explicit Rewriter(const QString& sql) : tokens_(TokenizeSql(sql)) {
        std::vector<int> open;
        for (int t = 0; t < int(tokens_.size()); ++t) {
            out_.push_back(tokens_[t].text);
            if (tokens_[t].kind == SqlToken::Space) continue;
            sig_.push_back(t);
            close_.push_back(-1);
            const int k = int(sig_.size()) - 1;
            if (tokens_[t].IsPunct('(')) {
                open.push_back(k);
            } else if (tokens_[t].IsPunct(')') && !open.empty()) {
                close_[open.back()] = k;
                open.pop_back();
            }
        }
        for (int k : open) close_[k] = Size();
    }

    int Size() const { return int(sig_.size()); }
    const SqlToken& T(int k) const { return tokens_[sig_[k]]; }
    bool Is(int k, char c) const { return k >= 0 && k < Size() && T(k).IsPunct(c); }
    bool IsWord(int k, QStringView w) const { return k >= 0 && k < Size() && T(k).IsWord(w); }
    // The next position at the same bracket depth.
    int Skip(int k) const { return Is(k, '(') ? close_[k] + 1 : k + 1; }
    QString& Out(int k) { return out_[sig_[k]]; }

    QString Result() const {
        QString text;
        for (const QString& piece : out_) text += piece;
        return text;
    }

    // The pieces between the commas of [b, e) that aren't in brackets.
    std::vector<Range> Split(int b, int e) const {
        std::vector<Range> parts;
        int start = b;
        for (int k = b; k < e; k = Skip(k)) {
            if (Is(k, ',')) {
                parts.push_back({start, k});
                start = k + 1;
            }
        }
        if (start < e || !parts.empty()) parts.push_back({start, e});
        return parts;
    }

    // The output texts of [b, e], blanks included.
    QString Text(int b, int e) const {
        QString text;
        for (int t = sig_[b]; t <= sig_[e]; ++t) text += out_[t];
        return text;
    }

    void CheckEmptyInLists() const {
        for (int k = 0; k + 2 < Size(); ++k)
            if (T(k).IsWord(u"in") && Is(k + 1, '(') && Is(k + 2, ')'))
                throw RuntimeError(ErrorCode::SyntaxError);
    }

    void RenameLen() {
        for (int k = 0; k + 1 < Size(); ++k)
            if (T(k).IsWord(u"len") && Is(k + 1, '(') && !Is(k - 1, '.'))
                Out(k) = QStringLiteral("length");
    }

    // From the last one back, so that a Convert inside another is done first.
    void RewriteConvert() {
        for (int k = Size() - 2; k >= 0; --k) {
            if (!T(k).IsWord(u"convert") || !Is(k + 1, '(') || close_[k + 1] >= Size()) continue;
            const int end = close_[k + 1];
            const auto args = Split(k + 2, end);
            if (args.size() != 3) continue;
            const auto [a0, e0] = args[0];
            const auto [a1, e1] = args[1];
            const auto [a2, e2] = args[2];
            if (e0 - a0 != 4 || !T(a0).IsWord(u"char") || !Is(a0 + 1, '(') || !Is(a0 + 3, ')'))
                continue;
            const QString width = T(a0 + 2).text;
            if (width != QLatin1String("8") && width != QLatin1String("6")) continue;
            if (e2 - a2 != 1 || T(a2).text != QLatin1String("112") || e1 <= a1) continue;
            const QString format =
                width == QLatin1String("8") ? QStringLiteral("%Y%m%d") : QStringLiteral("%Y%m");
            const QString value = Text(a1, e1 - 1);
            for (int t = sig_[k] + 1; t <= sig_[end]; ++t) out_[t].clear();
            Out(k) = QStringLiteral("strftime('") + format + QStringLiteral("',") + value +
                     QLatin1Char(')');
        }
    }

    // Every query of [b, e) and of its brackets, each part of a union apart.
    void QualifyNames(int b, int e) {
        int start = b;
        for (int k = b; k < e; k = Skip(k)) {
            if (Is(k, '(')) QualifyNames(k + 1, close_[k]);
            if (IsWord(k, u"union")) {
                QualifyInSelect(start, k);
                start = IsWord(k + 1, u"all") ? k + 2 : k + 1;
            }
        }
        QualifyInSelect(start, e);
    }

  private:
    struct Source {
        QString qualifier;  // alias, else the table name as written
        std::optional<Columns> columns;
    };
    struct Condition {
        int b, e;
        int visible;  // sources joined so far
    };
    struct Clauses {
        int list = -1, listEnd = -1, from = -1, fromEnd = -1, order = -1;
    };

    static const QHash<QString, Columns>& TableColumns() {
        static const QHash<QString, Columns> tables = [] {
            QHash<QString, Columns> out;
            for (const QString& statement : EmbeddedSchema::TableStatements()) {
                Rewriter r(statement);  // CREATE TABLE name (column type, ...)
                if (r.Size() < 4 || !r.Is(3, '(')) continue;
                Columns& columns = out[Key(r.T(2).Name())];
                for (const auto& [b, e] : r.Split(4, r.close_[3]))
                    if (e > b && r.T(b).kind == SqlToken::Word && !r.T(b).IsWord(u"primary"))
                        columns.insert(Key(r.T(b).Name()));
            }
            return out;
        }();
        return tables;
    }

    Clauses Find(int b, int e) const {
        Clauses c;
        if (b >= e || !T(b).IsWord(u"select")) return c;
        c.list = b + 1;
        if (IsWord(c.list, u"distinct") || IsWord(c.list, u"all")) ++c.list;
        if (IsWord(c.list, u"top")) c.list = Skip(c.list + 1);
        c.listEnd = e;
        int clauseEnd = e;
        for (int k = c.list; k < e; k = Skip(k)) {
            const bool by = IsWord(k + 1, u"by");
            const bool clause = IsWord(k, u"where") || IsWord(k, u"having") ||
                                ((IsWord(k, u"group") || IsWord(k, u"order")) && by);
            if (IsWord(k, u"from") && c.from < 0) {
                c.from = k + 1;
                c.listEnd = k;
            } else if (clause && clauseEnd == e) {
                clauseEnd = k;
                if (c.from < 0) c.listEnd = k;
            }
            if (IsWord(k, u"order") && by) c.order = k + 2;
        }
        if (c.from >= 0) c.fromEnd = clauseEnd;
        return c;
    }

    // The names a query gives its columns; none when it has a "*".
    std::optional<Columns> OutputNames(int b, int e) const {
        const Clauses c = Find(b, e);
        if (c.list < 0) return std::nullopt;
        Columns names;
        for (const auto& [ib, ie] : Split(c.list, c.listEnd)) {
            if (ie <= ib) continue;
            if (Is(ie - 1, '*')) return std::nullopt;
            if (T(ie - 1).kind == SqlToken::Word) names.insert(Key(T(ie - 1).Name()));
        }
        return names;
    }

    bool IsJoinWord(int k) const {
        for (const char16_t* w :
             {u"inner", u"left", u"right", u"full", u"cross", u"outer", u"join", u"natural", u"on"})
            if (IsWord(k, w)) return true;
        return false;
    }

    // Tables and derived tables of a FROM clause with the ON conditions between
    // them. False when the clause has a form not read here.
    bool ParseFrom(int b, int e, std::vector<Source>& sources,
                   std::vector<Condition>& conditions) const {
        int k = b;
        while (k < e) {
            Source s;
            if (Is(k, '(')) {
                s.columns = OutputNames(k + 1, close_[k]);
                k = close_[k] + 1;
            } else if (T(k).kind == SqlToken::Word) {
                QString table = T(k).Name();
                s.qualifier = T(k).text;
                for (++k; Is(k, '.') && k + 1 < e; k += 2) {
                    table = T(k + 1).Name();
                    s.qualifier += QLatin1Char('.') + T(k + 1).text;
                }
                const auto found = TableColumns().find(Key(table));
                if (found != TableColumns().end()) s.columns = *found;
            } else {
                return false;
            }
            if (IsWord(k, u"as")) ++k;
            if (k < e && T(k).kind == SqlToken::Word && !IsJoinWord(k)) s.qualifier = T(k++).text;
            if (s.qualifier.isEmpty()) return false;
            sources.push_back(std::move(s));
            if (IsWord(k, u"on")) {
                const int start = ++k;
                while (k < e && !IsJoinWord(k) && !Is(k, ',')) k = Skip(k);
                conditions.push_back({start, k, int(sources.size())});
            }
            if (Is(k, ',')) ++k;
            while (k < e && IsJoinWord(k)) ++k;
        }
        return true;
    }

    void QualifyOn(int b, int e) {
        std::vector<Source> sources;
        std::vector<Condition> conditions;
        if (!ParseFrom(b, e, sources, conditions)) return;
        for (const Condition& c : conditions) {
            for (int k = c.b; k < c.e; ++k) {
                if (Is(k, '(') && IsWord(k + 1, u"select")) {
                    k = close_[k];
                    continue;
                }
                if (T(k).kind != SqlToken::Word || Is(k - 1, '.') || Is(k + 1, '.') ||
                    Is(k + 1, '('))
                    continue;
                const QString key = Key(T(k).Name());
                int holder = -1, visibleHolders = 0, allHolders = 0;
                for (int i = 0; i < int(sources.size()); ++i) {
                    if (!sources[i].columns || !sources[i].columns->contains(key)) continue;
                    ++allHolders;
                    if (i < c.visible) {
                        ++visibleHolders;
                        holder = i;
                    }
                }
                if (visibleHolders == 1 && allHolders > 1)
                    Out(k) = sources[holder].qualifier + QLatin1Char('.') + Out(k);
            }
        }
    }

    void QualifyOrderBy(const Clauses& c, int e) {
        QHash<QString, QString> qualified;  // name -> Q of a "Q.name" list column
        Columns named;                      // aliases and bare names of the list
        for (const auto& [ib, ie] : Split(c.list, c.listEnd)) {
            if (ie - ib == 3 && T(ib).kind == SqlToken::Word && Is(ib + 1, '.') &&
                T(ib + 2).kind == SqlToken::Word) {
                const QString key = Key(T(ib + 2).Name());
                if (!qualified.contains(key)) qualified.insert(key, T(ib).text);
            } else if (ie > ib && T(ie - 1).kind == SqlToken::Word) {
                named.insert(Key(T(ie - 1).Name()));
            }
        }
        for (const auto& [tb, te] : Split(c.order, e)) {
            const bool bare = te - tb == 1 ||
                              (te - tb == 2 && (IsWord(tb + 1, u"asc") || IsWord(tb + 1, u"desc")));
            if (!bare || T(tb).kind != SqlToken::Word) continue;
            const QString key = Key(T(tb).Name());
            if (!named.contains(key) && qualified.contains(key))
                Out(tb) = qualified.value(key) + QLatin1Char('.') + Out(tb);
        }
    }

    void QualifyInSelect(int b, int e) {
        const Clauses c = Find(b, e);
        if (c.list < 0) return;
        if (c.from >= 0) QualifyOn(c.from, c.fromEnd);
        if (c.order >= 0) QualifyOrderBy(c, e);
    }

    std::vector<SqlToken> tokens_;
    std::vector<QString> out_;
    std::vector<int> sig_;
    std::vector<int> close_;
};

}  // namespace

QString AdaptToSQLite(const QString& sql) {
    Rewriter r(sql);
    r.CheckEmptyInLists();
    r.QualifyNames(0, r.Size());
    r.RenameLen();
    r.RewriteConvert();
    return r.Result();
}

}  // namespace yunqi
