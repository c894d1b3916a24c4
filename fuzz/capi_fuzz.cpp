// The C interface as a sequence of calls that the input chooses, on a file of the input: each answers as its
// declaration says, whatever was called before.
#include <limits>
#include <memory>

#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "table_rw/capi/vo_table_reader.h"
#include "table_rw/capi/vo_table_reader_utf.h"
#include "table_rw/text/utf8.h"

namespace {

using fuzzing::demand;
using fuzzing::inputReader;

// Strings that were fed to an adapter.
class receivedStrings {
 public:
  receivedStrings() : adapter_(vo_string_adp_create_callback(&receive, this)) {}
  receivedStrings(const receivedStrings&) = delete;
  receivedStrings& operator=(const receivedStrings&) = delete;
  ~receivedStrings() { vo_string_adp_destroy(adapter_); }

  operator vo_string_adp*() { return adapter_; }
  std::vector<std::wstring> all;

 private:
  static void receive(void* user, const wchar_t* text) {
    demand(text != nullptr, "a null is fed");
    static_cast<receivedStrings*>(user)->all.emplace_back(text);
  }
  vo_string_adp* adapter_;
};

const wchar_t* const extensions[] = {L"csv",    L"dbf", L"dat", L"tops",
                                     L"sqlite", L"txt", L"",    L"fpt"};

struct listCloser {
  void operator()(vo_text_list* list) const { vo_text_list_close(list); }
};
using ownedList = std::unique_ptr<vo_text_list, listCloser>;

// A list in UTF-8 as texts; every text has its NUL behind it.
std::vector<std::string> textsOf(const vo_text_list* list) {
  std::vector<std::string> texts;
  const std::uint64_t* const offsets = vo_text_list_offsets(list);
  const char* const data = vo_text_list_data_u8(list);
  demand(offsets != nullptr && data != nullptr, "a list without offsets or bytes");
  demand(offsets[0] == 0, "a list begins elsewhere");
  for (std::uint64_t i = 0; i < vo_text_list_count(list); ++i) {
    demand(offsets[i] < offsets[i + 1], "a text without its NUL");
    texts.emplace_back(data + offsets[i], data + offsets[i + 1] - 1);
    demand(data[offsets[i + 1] - 1] == '\0', "no NUL behind a text");
    demand(tableRW::isValidUtf8(texts.back()), "a text that is not valid");
  }
  return texts;
}

// One host with its two handles.
class host {
 public:
  host(const std::wstring& path, inputReader& input)
      : input_(&input), options_(vo_table_reader_options_create(path.c_str())) {
    open();
  }
  host(const host&) = delete;
  host& operator=(const host&) = delete;
  ~host() {
    vo_table_reader_close(reader_);
    vo_table_reader_options_close(options_);
  }

  void callNext() {
    static constexpr void (host::*calls[])() = {
        &host::setOption,   &host::reopen,      &host::read,   &host::readDemo,
        &host::readHeaders, &host::setTable,    &host::tables, &host::fields,
        &host::oneValue,    &host::namedValue,  &host::row,    &host::errors,
        &host::read,        &host::setEncoding, &host::column, &host::rejected};
    (this->*input_->oneOf(calls))();
  }

  std::string outcome() {
    return std::to_string(vo_table_reader_field_count(reader_)) + " fields, " +
           std::to_string(vo_table_reader_count(reader_)) + " rows";
  }

 private:
  void open() {
    reader_ = vo_table_reader_open(options_);
    demand(reader_ != nullptr, "open answers null");
    demand(vo_table_reader_count(reader_) == 0, "rows before the first read");
  }
  void reopen() {
    vo_table_reader_close(reader_);
    open();
  }
  // WHY not the types 2 to 4: they start programs and look for drivers.
  void setOption() {
    static constexpr std::int32_t types[] = {0, 1, 5, 0, -1, 100, 1, 5};
    static constexpr wchar_t delimiters[] = {L';', L'\t', L',', L' ', L'\0', L'a'};
    switch (input_->below(5)) {
      case 0:
        return vo_table_reader_options_set_header_position(
            options_, static_cast<std::int32_t>(input_->byte()) - 3);
      case 1:
        return vo_table_reader_options_set_data_position(options_, input_->byte());
      case 2:
        return vo_table_reader_options_set_direction(
            options_, static_cast<std::int32_t>(input_->below(4)) - 1);
      case 3:
        return vo_table_reader_options_set_file_type(options_, input_->oneOf(types));
      default:
        return vo_table_reader_options_set_delimiter(options_, input_->oneOf(delimiters));
    }
  }
  void setEncoding() {
    vo_table_reader_options_set_encoding(options_,
                                         static_cast<std::int32_t>(input_->below(21)) - 1);
  }
  void read() { checkRead(vo_table_reader_read(reader_)); }
  void readDemo() {
    checkRead(vo_table_reader_read_demo(reader_, static_cast<std::int32_t>(input_->byte()) - 1));
  }
  void readHeaders() { checkRead(vo_table_reader_read_only_headers(reader_)); }
  void checkRead(bool isRead) {
    if (isRead) demand(vo_table_reader_is_ok(reader_), "a read that succeeds is not OK");
  }
  void setTable() {
    const std::wstring name = fuzzing::wideText(input_->bytes(input_->below(8)));
    if ((input_->byte() & 1) != 0)
      vo_table_reader_options_set_table(options_, name.c_str());
    else
      vo_table_reader_set_table(reader_, name.c_str());
  }
  void tables() {
    receivedStrings names;
    vo_table_reader_table_list(reader_, names);
    if (!names.all.empty()) vo_table_reader_set_table(reader_, names.all.back().c_str());
  }
  void fields() {
    receivedStrings names;
    vo_table_reader_field_list(reader_, names);
    demand(names.all.size() == vo_table_reader_field_count(reader_), "the number of names");
    for (std::size_t i = 0; i < names.all.size(); ++i) {
      const std::int32_t found = vo_table_reader_field_num(reader_, names.all[i].c_str());
      // A name that holds a NUL is not found by what stands before it.
      demand(found >= -1 && found <= static_cast<std::int32_t>(i), "the place of a name");
      if (found >= 0)
        demand(names.all[static_cast<std::size_t>(found)] == names.all[i], "the first of a name");
    }
  }
  std::uint64_t anyIndex(std::uint64_t count) {
    const unsigned choice = input_->byte();
    if (choice == 0xFF) return std::numeric_limits<std::uint64_t>::max();
    return count == 0 ? choice : (choice * 257U) % (count + 2);
  }
  void oneValue() {
    const std::uint64_t column = anyIndex(vo_table_reader_field_count(reader_));
    const std::uint64_t row = anyIndex(vo_table_reader_count(reader_));
    receivedStrings value;
    vo_table_reader_value_index(reader_, column, row, value);
    demand(value.all.size() == 1, "not one value");
    if (row >= vo_table_reader_count(reader_))
      demand(value.all.front().empty(), "a value of a row that does not exist");
    receivedStrings whole;
    vo_table_reader_row(reader_, row, whole);
    // Rows of Petrel tables may be longer than there are fields, or shorter.
    if (column < whole.all.size() && column < vo_table_reader_field_count(reader_))
      demand(whole.all[column] == value.all.front(), "a row has another value");
    else
      demand(value.all.front().empty(), "a value without a place");
  }
  void namedValue() {
    receivedStrings names;
    vo_table_reader_field_list(reader_, names);
    const std::uint64_t row = anyIndex(vo_table_reader_count(reader_));
    const std::wstring name = names.all.empty() ? L"x" : names.all[input_->below(names.all.size())];
    const std::int32_t column = vo_table_reader_field_num(reader_, name.c_str());
    receivedStrings byName;
    receivedStrings byIndex;
    vo_table_reader_value_name(reader_, name.c_str(), row, byName);
    vo_table_reader_value_index(reader_, static_cast<std::uint64_t>(std::int64_t{column}), row,
                                byIndex);
    demand(byName.all.size() == 1 && byName.all == byIndex.all, "the value by its name");
  }
  void row() {
    const std::uint64_t index = anyIndex(vo_table_reader_count(reader_));
    receivedStrings values;
    vo_table_reader_row(reader_, index, values);
    demand(index < vo_table_reader_count(reader_) || values.all.empty(),
           "a row that does not exist");
  }
  void errors() {
    const std::uint64_t count = vo_table_reader_error_count(reader_);
    demand(
        vo_table_reader_error_string(reader_, count) == std::numeric_limits<std::uint64_t>::max(),
        "an error behind the last");
    for (std::uint64_t i = 1; i < count; ++i)
      demand(
          vo_table_reader_error_string(reader_, i - 1) < vo_table_reader_error_string(reader_, i),
          "errors out of order");
  }

  // A whole column has the values that are asked for one by one, here to their first NUL.
  void column() {
    const std::uint64_t index = anyIndex(vo_table_reader_field_count(reader_));
    const ownedList list(vo_text_list_create());
    demand(vo_table_reader_column_u8(reader_, index, list.get()), "a column is refused");
    const std::vector<std::string> texts = textsOf(list.get());
    const bool isThere = index < vo_table_reader_field_count(reader_);
    demand(texts.size() == (isThere ? vo_table_reader_count(reader_) : 0),
           "the length of a column");
    for (std::size_t row = 0; row < texts.size(); row += 1 + texts.size() / 16) {
      receivedStrings value;
      vo_table_reader_value_index(reader_, index, row, value);
      demand(value.all.front() == fuzzing::wideText(texts[row].c_str()), "a value of a column");
    }
    demand(vo_table_reader_column_u16(reader_, index, list.get()), "a column in UTF-16 is refused");
    demand(vo_text_list_count(list.get()) == texts.size(), "the length of a column in UTF-16");
    demand(vo_text_list_data_u8(list.get()) == nullptr, "UTF-16 as UTF-8");
  }
  void rejected() {
    const unsigned most = input_->byte();
    const ownedList list(vo_text_list_create());
    const bool isRead = vo_table_reader_rejected_u8(reader_, most, list.get());
    const std::vector<std::string> texts = textsOf(list.get());
    demand(texts.size() <= most, "too many rejected lines");
    demand(isRead || texts.empty(), "rejected lines in spite of a failure");
  }

  inputReader* input_;
  vo_table_reader_options* options_;
  vo_table_reader* reader_ = nullptr;
};

}  // namespace

// The first byte is the file's extension, the second the number of bytes that choose the calls; the rest is the file.
std::string fuzzing::capi(std::string_view bytes) {
  inputReader input(bytes);
  const std::wstring name = std::wstring(L"input.") + input.oneOf(extensions);
  inputReader calls(input.bytes(input.byte()));
  const std::wstring path = writeInput(name, input.rest());
  host one(path, calls);
  while (!calls.isAtEnd()) one.callNext();
  return one.outcome();
}
