// The operations of vok_file_dbf: handles, and which of the two kinds of table one stands for.
#include "platform/vok_file_dbf.h"

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/codePages.h"
#include "platform/files.h"
#include "suite/file_dbf/dbfFields.h"
#include "suite/file_dbf/dbfHeader.h"
#include "suite/file_dbf/dbfLanguages.h"
#include "suite/file_dbf/dbfMemo.h"
#include "suite/file_dbf/dbfPaths.h"
#include "suite/file_dbf/dbfRecords.h"
#include "suite/file_dbf/dbfTarget.h"
#include "suite/file_dbf/dbfValues.h"

namespace {

static_assert(sizeof(dbfFieldDef) == 14);
static_assert(fileDbf::recordSource::padding >= vo_dbf_padding);

constexpr int openForReading = 1;

// A table that is read.
class tableSource {
 public:
  tableSource(platform::binaryFile file, fileDbf::tableHeader header, const wchar_t* path)
      : header_(std::move(header)),
        records_(std::move(file), header_),
        computed_(header_.fields.size()),
        values_(header_.fields.size() + 1) {
    if (header_.hasMemos()) memos_.emplace(path, header_.version);
  }

  const std::vector<fileDbf::tableField>& fields() const { return header_.fields; }
  std::int32_t count() { return static_cast<std::int32_t>(records_.count()); }

  bool hasFailed() const { return records_.hasFailed() || (memos_ && memos_->hasFailed()); }

  const char* text(std::uint32_t field, std::int32_t record, bool& hasValue) {
    hasValue = false;
    if (memos_) memos_->beginPass();
    const char* const bytes = bytesOf(record);
    if (bytes == nullptr || field >= header_.fields.size()) return "";
    const vo_dbf_value found = value(field, bytes);
    hasValue = found.bytes != nullptr;
    if (!hasValue) return "";
    text_.assign(found.bytes, found.length);
    return text_.c_str();
  }

  const vo_dbf_value* record(std::int32_t record) {
    const char* const bytes = bytesOf(record);
    if (bytes == nullptr) return nullptr;
    if (memos_ && record <= lastAtOnce_) memos_->beginPass();
    lastAtOnce_ = record;
    for (std::size_t field = 0; field < header_.fields.size(); ++field) {
      std::string& computed = computed_[field];
      vo_dbf_value found = value(field, bytes);
      if (found.bytes == computed.data()) {
        computed.append(vo_dbf_padding, '\0');
        found.bytes = computed.data();
      }
      values_[field] = found;
    }
    return values_.data();
  }

 private:
  const char* bytesOf(std::int32_t record) {
    return record < 0 ? nullptr : records_.record(static_cast<std::uint32_t>(record));
  }

  vo_dbf_value value(std::size_t field, const char* bytes) {
    return fileDbf::readValue(header_, header_.fields[field], bytes, memos_ ? &*memos_ : nullptr,
                              computed_[field]);
  }

  fileDbf::tableHeader header_;
  fileDbf::recordSource records_;
  std::optional<fileDbf::memoFile> memos_;
  std::vector<std::string> computed_;  // of each field
  std::vector<vo_dbf_value>
      values_;  // one more than fields, so that a table without any has an address
  std::string text_;
  std::int32_t lastAtOnce_ = -1;
};

class fileOutput final : public fileDbf::tableOutput {
 public:
  explicit fileOutput(platform::binaryFile file) : file_(std::move(file)) {}

  bool write(std::uint64_t at, const char* bytes, std::size_t size) override {
    if (at != position_ && !file_.seek(at)) return false;
    position_ = at + size;
    if (file_.write(bytes, size)) return true;
    position_ = std::numeric_limits<std::uint64_t>::max();  // wherever it stands now
    return false;
  }

 private:
  platform::binaryFile file_;
  std::uint64_t position_ = 0;
};

// Says beside the table which code page it is in, where its header cannot; an old file that says so would
// be wrong else.
bool writeCodePage(const std::wstring& path, unsigned codePage) {
  const std::wstring beside = fileDbf::withExtension(path, L".cpg");
  if (fileDbf::languageDriverOf(codePage) != 0) {
    platform::removeFile(beside);
    return true;
  }
  const std::string text = fileDbf::codePageText(codePage);
  platform::binaryFile file;
  return file.openForWriting(beside) && file.write(text.data(), text.size()) && file.close();
}

}  // namespace

struct vo_dbf {
  std::unique_ptr<tableSource> source;
  std::unique_ptr<fileDbf::tableTarget> target;
};

vo_dbf* vo_dbf_open_w(const wchar_t* path, int mode, int) {
  platform::binaryFile file;
  if (path == nullptr || mode != openForReading || !file.openForReading(path)) return nullptr;
  std::optional<fileDbf::tableHeader> header = fileDbf::readHeader(file);
  if (!header || file.hasFailed()) return nullptr;
  auto table = std::make_unique<vo_dbf>();
  table->source = std::make_unique<tableSource>(std::move(file), std::move(*header), path);
  return table.release();
}

uint32_t vo_dbf_get_nf(const vo_dbf* table) {
  if (table == nullptr || table->source == nullptr) return 0;
  return static_cast<uint32_t>(table->source->fields().size());
}

int32_t vo_dbf_get_nr(vo_dbf* table) {
  return table == nullptr || table->source == nullptr ? 0 : table->source->count();
}

void vo_dbf_get_field_name_w(const vo_dbf* table, uint32_t field, vo_string_adp* receiver) {
  if (field < vo_dbf_get_nf(table))
    vo_string_adp_feed_narrow(receiver, table->source->fields()[field].name.c_str());
}

int vo_dbf_get_field_type(const vo_dbf* table, uint32_t field) {
  return field < vo_dbf_get_nf(table) ? fileDbf::codeOfField(table->source->fields()[field]) : 0;
}

const char* vo_dbf_get_str(vo_dbf* table, uint32_t field, int32_t record,
                           unsigned char* has_value) {
  bool found = false;
  const char* const text =
      table == nullptr || table->source == nullptr ? "" : table->source->text(field, record, found);
  if (has_value != nullptr) *has_value = found ? 1 : 0;
  return text;
}

const vo_dbf_value* vo_dbf_get_record(vo_dbf* table, int32_t record) {
  return table == nullptr || table->source == nullptr ? nullptr : table->source->record(record);
}

bool vo_dbf_has_failed(const vo_dbf* table) {
  return table != nullptr && table->source != nullptr && table->source->hasFailed();
}

vo_dbf* vo_dbf_create_w(const wchar_t* path, uint32_t count, int kind, const dbfFieldDef* fields,
                        unsigned char replace) {
  if (path == nullptr || kind != 0) return nullptr;
  auto list = fileDbf::writableFields(fields, count);
  if (!list || (replace == 0 && platform::fileExists(path))) return nullptr;
  auto table = std::make_unique<vo_dbf>();
  platform::binaryFile file;
  if (!file.openForWriting(path)) return nullptr;
  const unsigned codePage = platform::resolveCodePage(platform::systemCodePage);
  const bool named = writeCodePage(path, codePage);
  table->target = std::make_unique<fileDbf::tableTarget>(
      std::make_unique<fileOutput>(std::move(file)), std::move(*list), codePage);
  if (named && table->target->isSound()) return table.release();
  table.reset();
  platform::removeFile(path);
  return nullptr;
}

int vo_dbf_add_records(vo_dbf* table, int32_t count) {
  return table != nullptr && table->target != nullptr && table->target->addRecords(count) ? 1 : 0;
}

int vo_dbf_set_str_w(vo_dbf* table, uint32_t field, int32_t record, const wchar_t* text) {
  return table != nullptr && table->target != nullptr &&
                 table->target->setValue(field, record, text)
             ? 1
             : 0;
}

void vo_dbf_close(vo_dbf* table) { delete table; }
