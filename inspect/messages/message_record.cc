#include "inspect/messages/message_record.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "inspect/error.h"
#include "inspect/messages/byte_counts.h"
#include "inspect/messages/field_bytes.h"

namespace inspect {

namespace {

uint32_t codepage_of(const message_kind& kind, std::string_view record, byte_order order) {
  const message_field* field = field_of_form(kind, field_form::codepage);
  return field == nullptr ? 0 : number_at(record, field->offset, field->length, order);
}

// ---- Reading ----

field_value read_bytes(std::string_view name, size_t offset, std::string_view bytes) {
  return read_field({name, offset, bytes.size(), field_form::bytes, 0, ""}, bytes, 0, byte_order::big);
}

// How long a record has to be, by what it says itself.
size_t needed_size(const message_kind& kind, std::string_view record, byte_order order) {
  const message_field* count = field_of_form(kind, field_form::count);
  if (count == nullptr || record.size() < kind.size) return record.size() <= kind.short_size ? kind.short_size : kind.size;
  return kind.size + size_t{number_at(record, count->offset, count->length, order)} * kListedInterfaceBytes;
}

size_t end_of(const message_field& field, size_t record_size) {
  return field.form == field_form::interface_list ? record_size : field.offset + field.length;
}

void require_size(const message_kind& kind, std::string_view record, size_t needed) {
  if (record.size() >= needed) return;
  const auto cut = std::find_if(kind.fields.begin(), kind.fields.end(),
                                [&](const auto& field) { return end_of(field, needed) > record.size(); });
  throw question_error(fmt::format("{}: {}: the record has {} of {}, not all of {} at offset {}", kind.name,
                                   missing_bytes(needed - record.size()), record.size(), counted_bytes(needed), cut->name,
                                   cut->offset));
}

// ---- Writing ----

using given_texts = std::map<std::string_view, std::string_view>;

given_texts texts_of(const message_kind& kind, const std::vector<std::string>& words) {
  given_texts texts;
  for (const std::string& word : words) {
    const size_t equals = word.find('=');
    const std::string_view name = std::string_view(word).substr(0, equals);
    find_message_field(kind, name);
    if (equals == std::string::npos)
      throw question_error(fmt::format("field \"{}\" has no value; expected {}=VALUE", name, name));
    if (!texts.emplace(name, std::string_view(word).substr(equals + 1)).second)
      throw question_error(fmt::format("field \"{}\" is given twice", name));
  }
  return texts;
}

void write_field(const message_kind& kind, const message_field& field, std::string_view text, byte_order order,
                 std::string& record) {
  try {
    record.replace(field.offset, field.length, bytes_of_field(field, text, codepage_of(kind, record, order), order));
  } catch (const error& refused) {
    throw error(refused.failed(), fmt::format("{} of {}: {}", field.name, kind.name, refused.what()));
  }
}

// The whole length, or that of the short form when none of the fields behind it is given.
size_t size_for(const message_kind& kind, const given_texts& texts) {
  for (const auto& field : kind.fields)
    if (field.offset >= kind.short_size && texts.contains(field.name)) return kind.size;
  return kind.short_size;
}

void write_count(const message_kind& kind, byte_order order, std::string& record) {
  const message_field* count = field_of_form(kind, field_form::count);
  if (count == nullptr) return;
  const size_t listed = (record.size() - kind.size) / kListedInterfaceBytes;
  set_number(record, count->offset, count->length, order, static_cast<uint32_t>(listed));
}

} // namespace

std::vector<field_value> read_record(const message_kind& kind, std::string_view record, byte_order order) {
  if (kind.is_free_form && record.size() != kind.size) return {read_bytes("(bytes)", 0, record)};
  const size_t size = needed_size(kind, record, order);
  require_size(kind, record, size);
  const uint32_t codepage = codepage_of(kind, record, order);
  std::vector<field_value> values;
  for (const auto& field : kind.fields) {
    if (end_of(field, size) > size) break;
    values.push_back(read_field(field, record.substr(field.offset, end_of(field, size) - field.offset), codepage, order));
  }
  if (record.size() > size) values.push_back(read_bytes("(beyond)", size, record.substr(size)));
  return values;
}

std::optional<order_doubt> doubt_about_order(const message_kind& kind, std::string_view record, byte_order order) {
  for (const auto& field : kind.fields) {
    if (field.usual == 0 || field.offset + field.length > record.size()) continue;
    if (number_at(record, field.offset, field.length, other_order(order)) == field.usual)
      return order_doubt{field.name, field.usual, other_order(order)};
  }
  return std::nullopt;
}

std::string make_record(const message_kind& kind, const std::vector<std::string>& words, byte_order order) {
  const given_texts texts = texts_of(kind, words);
  std::string record(size_for(kind, texts), '\0');
  for (const auto& field : kind.fields) {
    if (field.offset + field.length > record.size()) break;
    if (field.usual != 0) set_number(record, field.offset, field.length, order, field.usual);
    if (const auto text = texts.find(field.name); text != texts.end())
      write_field(kind, field, text->second, order, record);
  }
  write_count(kind, order, record);
  return record;
}

} // namespace inspect
