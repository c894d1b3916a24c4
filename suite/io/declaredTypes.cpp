#include "suite/io/declaredTypes.h"

#include <algorithm>
#include <array>

#include "suite/io/sqlText.h"

namespace suiteIo {
namespace {

constexpr std::array<std::string_view, 5> tableConstraints = {"CONSTRAINT", "PRIMARY", "UNIQUE",
                                                              "CHECK", "FOREIGN"};
constexpr std::array<std::string_view, 11> columnConstraints = {
    "CONSTRAINT", "PRIMARY", "NOT",        "NULL",      "UNIQUE", "CHECK",
    "DEFAULT",    "COLLATE", "REFERENCES", "GENERATED", "AS"};

template <class Words>
bool isOneOf(const sqlToken& token, const Words& words) {
  return std::any_of(words.begin(), words.end(),
                     [&](std::string_view word) { return token.isWord(word); });
}

// The list of columns, read from behind its opening parenthesis.
class columnList {
 public:
  explicit columnList(sqlTokens tokens) : tokens_(tokens), token_(tokens_.next()) {}

  std::vector<columnType> read() {
    std::vector<columnType> columns;
    while (token_.isName() && !isOneOf(token_, tableConstraints)) {
      columnType column{unquoted(token_.text), {}};
      advance();
      column.type = readType();
      if (!skipConstraints()) columns.push_back(std::move(column));
      if (!token_.isSign(',')) break;
      advance();
    }
    return columns;
  }

 private:
  void advance() { token_ = tokens_.next(); }

  // From its first word to its last, what stands between them included, or to the parenthesis behind them.
  std::string readType() {
    if (!token_.isName() || isOneOf(token_, columnConstraints)) return {};
    const char* const begin = token_.text.data();
    const char* end = begin;
    while (token_.isName() && !isOneOf(token_, columnConstraints)) {
      end = token_.text.data() + token_.text.size();
      advance();
    }
    if (token_.isSign('(')) end = skipParentheses();
    return unquoted({begin, static_cast<std::size_t>(end - begin)});
  }

  // @return behind the closing parenthesis, which is where the token stands no more
  const char* skipParentheses() {
    int depth = 0;
    const char* end = nullptr;
    do {
      if (token_.isSign('(')) ++depth;
      if (token_.isSign(')')) --depth;
      end = token_.text.data() + token_.text.size();
      advance();
    } while (depth > 0 && token_.kind != tokenKind::end);
    return end;
  }

  // Up to the comma or parenthesis behind the column. @return whether the column is a generated one
  bool skipConstraints() {
    bool generated = false;
    while (token_.kind != tokenKind::end && !token_.isSign(',') && !token_.isSign(')')) {
      generated = generated || token_.isWord("AS");
      if (token_.isSign('('))
        skipParentheses();
      else
        advance();
    }
    return generated;
  }

  sqlTokens tokens_;
  sqlToken token_;
};

}  // namespace

std::vector<columnType> readCreateTable(std::string_view sql) {
  sqlTokens tokens(sql);
  if (!tokens.next().isWord("CREATE")) return {};
  sqlToken token = tokens.next();
  if (token.isWord("TEMP") || token.isWord("TEMPORARY")) token = tokens.next();
  if (!token.isWord("TABLE")) return {};
  while (!token.isSign('(')) {  // IF NOT EXISTS, the schema, the name
    token = tokens.next();
    if (token.kind == tokenKind::end || token.isWord("AS")) return {};
  }
  return columnList(tokens).read();
}

std::vector<columnType> withDeclaredTypes(std::vector<columnType> ofEngine, std::string_view sql) {
  std::vector<columnType> declared = readCreateTable(sql);
  const bool fits =
      std::equal(ofEngine.begin(), ofEngine.end(), declared.begin(), declared.end(),
                 [](const columnType& engines, const columnType& own) {
                   return engines.name == own.name && isSameType(engines.type, own.type);
                 });
  return fits ? declared : ofEngine;
}

std::optional<tableInfoCall> readTableInfoCall(std::string_view sql) {
  sqlTokens tokens(sql);
  if (!tokens.next().isWord("PRAGMA")) return std::nullopt;
  tableInfoCall call;
  sqlToken pragma = tokens.next();
  sqlToken token = tokens.next();
  if (token.isSign('.')) {
    call.schema = unquoted(pragma.text);
    pragma = tokens.next();
    token = tokens.next();
  }
  const bool asked = pragma.isWord("TABLE_INFO") && (token.isSign('(') || token.isSign('='));
  const sqlToken table = tokens.next();
  if (!asked || !table.isName()) return std::nullopt;
  call.table = unquoted(table.text);
  return call;
}

}  // namespace suiteIo
