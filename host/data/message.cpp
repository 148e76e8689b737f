#include "host/data/message.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "host/data/fault.h"
#include "toolkit/text.h"

namespace orv::fb {
namespace {

// Days from the engine's day zero, 1858-11-17, to 1970-01-01.
constexpr int32_t kEpochDay = 40587;
constexpr int64_t kSecondsOfDay = 86400;
// The engine counts time in ten-thousandths of a second.
constexpr int64_t kTicks = 10000;
constexpr std::size_t kLargestText = std::size_t{1} << 20, kLargestBytes = std::size_t{8} << 20;
constexpr unsigned kCharsetNone = 0, kCharsetOctets = 1, kCharsetAscii = 2, kCharsetFss = 3, kCharsetUtf8 = 4;
constexpr int kTextBlob = 1;

constexpr std::array<int64_t, 19> kPowers = [] {
  std::array<int64_t, 19> powers{1};
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}();

template <class T>
T Load(const unsigned char* at) {
  T value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

template <class T>
void Store(unsigned char* at, T value) {
  std::memcpy(at, &value, sizeof value);
}

int64_t FloorDiv(int64_t a, int64_t b) { return a / b - (a % b < 0); }

std::vector<Field> FieldsOf(Firebird::IMessageMetadata* metadata) {
  Call call;
  const unsigned count = metadata->getCount(call());
  Check(call);
  std::vector<Field> fields(count);
  for (unsigned i = 0; i < count; ++i) {
    Field& field = fields[i];
    Status* const status = call();
    field.type = metadata->getType(status, i) & ~1u;
    field.scale = metadata->getScale(status, i);
    field.subtype = metadata->getSubType(status, i);
    field.length = metadata->getLength(status, i);
    field.charset = metadata->getCharSet(status, i) & 0xff;
    field.offset = metadata->getOffset(status, i);
    field.null_offset = metadata->getNullOffset(status, i);
    Check(call);
  }
  return fields;
}

std::vector<unsigned char> BufferFor(Firebird::IMessageMetadata* metadata) {
  Call call;
  const unsigned length = metadata->getMessageLength(call());
  Check(call);
  return std::vector<unsigned char>(length + 8);
}

ValueKind ExactKind(int scale) {
  if (scale == 0) return ValueKind::Integer;
  return scale >= -4 ? ValueKind::Currency : ValueKind::Float;
}

ValueKind KindOf(const Field& field) {
  switch (field.type) {
    case SQL_SHORT:
    case SQL_LONG:
    case SQL_INT64:
      return ExactKind(field.scale);
    case SQL_BOOLEAN:
      return ValueKind::Integer;
    case SQL_FLOAT:
    case SQL_DOUBLE:
    case SQL_D_FLOAT:
      return ValueKind::Float;
    case SQL_TYPE_DATE:
      return ValueKind::Date;
    case SQL_TIMESTAMP:
      return ValueKind::DateTime;
    case SQL_NULL:
      return ValueKind::Null;
    default:
      return ValueKind::Text;
  }
}

int CharactersOf(const Field& field) {
  if (field.type != SQL_TEXT && field.type != SQL_VARYING) return 0;
  const unsigned width = field.charset == kCharsetUtf8 ? 4 : field.charset == kCharsetFss ? 3 : 1;
  return static_cast<int>(field.length / width);
}

Value Exact(int64_t raw, int scale) {
  if (scale == 0) return Value(raw);
  if (scale >= -4)
    return Value(Currency::FromRaw(Int128{raw} * kPowers[static_cast<std::size_t>(4 + scale)]));
  return Value(static_cast<double>(static_cast<long double>(raw) /
                                   static_cast<long double>(kPowers[static_cast<std::size_t>(-scale)])));
}

Value TextOf(std::string_view text, const Field& field) {
  const bool checked = field.charset != kCharsetNone && field.charset != kCharsetOctets;
  return checked ? Value(text) : Value(CleanUtf8(text));
}

std::string TimeText(ISC_TIME time) {
  const unsigned seconds = static_cast<unsigned>(time / kTicks);
  char text[32];
  std::snprintf(text, sizeof text, "%02u:%02u:%02u", seconds / 3600, seconds / 60 % 60, seconds % 60);
  return text;
}

std::string ReadBlob(const Field& field, const unsigned char* at, const BlobSource& source) {
  auto id = Load<ISC_QUAD>(at);
  // A text of another character set is turned into UTF-8 by the engine.
  const unsigned char translate[] = {isc_bpb_version1,
                                     isc_bpb_source_type,
                                     1,
                                     isc_blob_text,
                                     isc_bpb_target_type,
                                     1,
                                     isc_blob_text,
                                     isc_bpb_source_interp,
                                     1,
                                     static_cast<unsigned char>(field.charset),
                                     isc_bpb_target_interp,
                                     1,
                                     kCharsetUtf8};
  const bool foreign = field.subtype == kTextBlob && field.charset > kCharsetAscii &&
                       field.charset != kCharsetUtf8 && field.charset != kCharsetFss;
  Call call;
  Ref<Firebird::IBlob> blob(source.attachment->openBlob(
      call(), source.transaction, &id, foreign ? sizeof translate : 0, foreign ? translate : nullptr));
  Check(call);
  std::string text;
  std::array<char, 32768> part;
  for (;;) {
    unsigned length = 0;
    const int result = blob->getSegment(call(), part.size(), part.data(), &length);
    Check(call);
    if (result == Firebird::IStatus::RESULT_NO_DATA) break;
    text.append(part.data(), length);
    if (text.size() > (field.subtype == kTextBlob ? kLargestText : kLargestBytes))
      throw DatabaseError(DatabaseError::Kind::Limit, 0,
                          field.subtype == kTextBlob ? "Um texto do banco de dados tem mais de 1 MiB."
                                                     : "Um arquivo do banco de dados tem mais de 8 MiB.",
                          "");
  }
  blob->close(call());
  if (!call.Failed()) static_cast<void>(blob.release());
  return field.subtype == kTextBlob && !ValidUtf8(text) ? CleanUtf8(text) : text;
}

void WriteBlob(std::string_view text, unsigned char* at, const BlobSource& source) {
  ISC_QUAD id{};
  Call call;
  Ref<Firebird::IBlob> blob(source.attachment->createBlob(call(), source.transaction, &id, 0, nullptr));
  Check(call);
  constexpr std::size_t kSegment = 32768;
  for (std::size_t from = 0; from < text.size(); from += kSegment) {
    const std::string_view part = text.substr(from, kSegment);
    blob->putSegment(call(), static_cast<unsigned>(part.size()), part.data());
    Check(call);
  }
  blob->close(call());
  Check(call);
  static_cast<void>(blob.release());
  Store(at, id);
}

// A number of any kind as an exact one of this scale, rounded half away from zero.
Int128 ScaledNumber(const Value& value, int scale) {
  const auto places = static_cast<std::size_t>(-scale);
  if (value.Kind() == ValueKind::Integer || value.Kind() == ValueKind::DateTime)
    return Int128{value.AsInteger()} * kPowers[places];
  if (value.Kind() == ValueKind::Float) return RoundedProduct(kPowers[places], value.AsFloat());
  const Int128 raw = value.AsCurrency().Raw();
  return places >= 4 ? RoundedProduct(raw, static_cast<double>(kPowers[places - 4]))
                     : RoundedQuotient(raw, kPowers[4 - places]);
}

template <class T>
void StoreExact(unsigned char* at, const Value& value, int scale) {
  const Int128 scaled = ScaledNumber(value, scale);
  if (scaled != static_cast<T>(scaled))
    throw RangeError("Um número é grande demais para o campo que o recebe.");
  Store(at, static_cast<T>(scaled));
}

void StoreText(unsigned char* at, const Field& field, const Value& value) {
  const std::string converted = value.IsText() ? std::string() : value.Neutral();
  std::string_view text = value.IsText() ? value.Text() : std::string_view(converted);
  if (text.size() > field.length)
    throw DatabaseError(DatabaseError::Kind::Constraint, isc_string_truncation,
                        "Um texto é maior que o campo que o recebe. Encurte o texto.",
                        std::to_string(text.size()) + " bytes for " + std::to_string(field.length));
  if (field.type == SQL_VARYING) {
    Store(at, static_cast<ISC_USHORT>(text.size()));
    std::memcpy(at + sizeof(ISC_USHORT), text.data(), text.size());
  } else {
    std::memcpy(at, text.data(), text.size());
    std::memset(at + text.size(), ' ', field.length - text.size());
  }
}

void StoreTimestamp(unsigned char* at, const Value& value) {
  const int64_t seconds = value.AsDateTime().Seconds();
  const int64_t day = FloorDiv(seconds, kSecondsOfDay);
  ISC_TIMESTAMP stamp{};
  stamp.timestamp_date = static_cast<ISC_DATE>(day + kEpochDay);
  stamp.timestamp_time = static_cast<ISC_TIME>((seconds - day * kSecondsOfDay) * kTicks);
  Store(at, stamp);
}

}  // namespace

RowReader::RowReader(Firebird::IMessageMetadata* metadata)
    : metadata_(metadata), fields_(FieldsOf(metadata)), buffer_(BufferFor(metadata)) {
  Call call;
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const char* const alias = metadata->getAlias(call(), static_cast<unsigned>(i));
    Check(call);
    columns_.push_back({alias ? alias : "", KindOf(fields_[i]), CharactersOf(fields_[i])});
  }
}

void RowReader::Read(std::span<Value> row, const BlobSource& blobs) const {
  const unsigned char* const message = buffer_.data();
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const Field& field = fields_[i];
    Value& value = row[i];
    if (Load<ISC_SHORT>(message + field.null_offset) != 0) {
      value = Value();
      continue;
    }
    const unsigned char* const at = message + field.offset;
    switch (field.type) {
      case SQL_VARYING:
        value = TextOf({reinterpret_cast<const char*>(at) + sizeof(ISC_USHORT), Load<ISC_USHORT>(at)}, field);
        break;
      case SQL_TEXT: {
        std::size_t length = field.length;
        while (length > 0 && at[length - 1] == ' ') --length;
        value = TextOf({reinterpret_cast<const char*>(at), length}, field);
        break;
      }
      case SQL_INT64:
        value = Exact(Load<ISC_INT64>(at), field.scale);
        break;
      case SQL_LONG:
        value = Exact(Load<ISC_LONG>(at), field.scale);
        break;
      case SQL_SHORT:
        value = Exact(Load<ISC_SHORT>(at), field.scale);
        break;
      case SQL_DOUBLE:
      case SQL_D_FLOAT:
        value = Value(Load<double>(at));
        break;
      case SQL_FLOAT:
        value = Value(static_cast<double>(Load<float>(at)));
        break;
      case SQL_TYPE_DATE: {
        const int32_t days = Load<ISC_DATE>(at) - kEpochDay;
        value = days == Date::kZeroDays ? Value() : Value(Date::FromDays(days));
        break;
      }
      case SQL_TIMESTAMP: {
        const auto stamp = Load<ISC_TIMESTAMP>(at);
        value = Value(DateTime::FromSeconds((int64_t{stamp.timestamp_date} - kEpochDay) * kSecondsOfDay +
                                            static_cast<int64_t>(stamp.timestamp_time) / kTicks));
        break;
      }
      case SQL_TYPE_TIME:
        value = Value(TimeText(Load<ISC_TIME>(at)));
        break;
      case SQL_BOOLEAN:
        value = Value(Load<FB_BOOLEAN>(at) ? 1 : 0);
        break;
      case SQL_BLOB:
        value = Value(ReadBlob(field, at, blobs));
        break;
      default:
        throw DatabaseError(DatabaseError::Kind::Other, 0,
                            "Uma coluna do banco de dados tem um tipo que este programa não lê.",
                            "column " + columns_[i].name + " type " + std::to_string(field.type));
    }
  }
}

ParameterSet::ParameterSet(Firebird::IMessageMetadata* metadata) : metadata_(metadata) {
  Call call;
  // Times go in as texts, which the engine reads itself.
  Ref<Firebird::IMetadataBuilder> builder(metadata->getBuilder(call()));
  Check(call);
  const std::vector<Field> given = FieldsOf(metadata);
  for (std::size_t i = 0; i < given.size(); ++i) {
    const auto index = static_cast<unsigned>(i);
    if (given[i].type == SQL_TYPE_TIME) {
      builder->setType(call(), index, SQL_VARYING + 1);
      builder->setLength(call(), index, 16);
      builder->setCharSet(call(), index, kCharsetAscii);
    } else if (given[i].type != SQL_NULL) {
      builder->setType(call(), index, given[i].type + 1);
    }
    Check(call);
  }
  metadata_.reset(builder->getMetadata(call()));
  Check(call);
  fields_ = FieldsOf(metadata_.get());
  buffer_ = BufferFor(metadata_.get());
}

void ParameterSet::Bind(std::span<const Value> values, const BlobSource& blobs) {
  ORV_ASSERT(values.size() == fields_.size());
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const Field& field = fields_[i];
    const Value& value = values[i];
    Store(buffer_.data() + field.null_offset, static_cast<ISC_SHORT>(value.IsNull() ? -1 : 0));
    if (value.IsNull()) continue;
    unsigned char* const at = buffer_.data() + field.offset;
    switch (field.type) {
      case SQL_VARYING:
      case SQL_TEXT:
        StoreText(at, field, value);
        break;
      case SQL_INT64:
        StoreExact<ISC_INT64>(at, value, field.scale);
        break;
      case SQL_LONG:
        StoreExact<ISC_LONG>(at, value, field.scale);
        break;
      case SQL_SHORT:
        StoreExact<ISC_SHORT>(at, value, field.scale);
        break;
      case SQL_DOUBLE:
      case SQL_D_FLOAT:
        Store(at, value.AsFloat());
        break;
      case SQL_FLOAT:
        Store(at, static_cast<float>(value.AsFloat()));
        break;
      case SQL_TYPE_DATE: {
        const Date date = value.AsDate();
        if (date.Empty())
          Store(buffer_.data() + field.null_offset, ISC_SHORT{-1});
        else
          Store(at, static_cast<ISC_DATE>(date.Days() + kEpochDay));
        break;
      }
      case SQL_TIMESTAMP:
        StoreTimestamp(at, value);
        break;
      case SQL_BOOLEAN:
        Store(at, static_cast<FB_BOOLEAN>(value.AsInteger() != 0));
        break;
      case SQL_BLOB:
        WriteBlob(value.IsText() ? std::string(value.Text()) : value.Neutral(), at, blobs);
        break;
      case SQL_NULL:
        break;
      default:
        throw DatabaseError(DatabaseError::Kind::Other, 0,
                            "Um campo do banco de dados tem um tipo que este programa não grava.",
                            "parameter " + std::to_string(i + 1) + " type " + std::to_string(field.type));
    }
  }
}

}  // namespace orv::fb
