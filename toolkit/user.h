// What a form may ask of the person at it. Each call returns the answer; the session's thread waits in it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

class DataSet;
class Form;
class TPesquisa;

enum class MessageKind : uint8_t { Information, Warning, Question };
enum class Answer : uint8_t { Ok, Yes, No, Cancel };

// The rows that a lookup list ended with; without a value it was closed without a choice.
using LookupChoice = std::optional<std::vector<int64_t>>;

// A line of an accounting posting that waits for the user's yes.
struct PostingLine {
  std::string debit, debit_description;
  std::string credit, credit_description;
  std::string amount;  // as people read it, "1.234,56"
  std::string note;
  bool unknown_account = false;
};

// A share of an apportionment that the user may change.
struct ShareLine {
  std::string code;
  std::string description;
  std::string percent;  // "33,33"
  std::string amount;   // "1.234,56"
};

// A report that was launched over the working sets of a screen.
struct ReportLaunch {
  std::string identifier;
  const Form* screen = nullptr;
  bool graphic = true;
  bool text = true;
};

class UserInterface {
 public:
  virtual ~UserInterface() = default;

  // Shows a message and waits. Information and warning have OK, a question has Yes and No.
  virtual Answer Message(MessageKind kind, std::string_view title, std::string_view text, Answer initial) = 0;
  // Asks a text; without a value the user gave up.
  virtual std::optional<std::string> InputBox(std::string_view title, std::string_view prompt,
                                              std::string_view value) = 0;
  // Lets the user choose in the lookup's open list.
  virtual LookupChoice Choose(TPesquisa& lookup) = 0;
  // Asks for a file; the path of the user's own copy, or nothing. `filters` is "bbt|*.bbt|Todos|*.*".
  virtual std::optional<std::string> OpenFile(std::string_view control, std::string_view filters) = 0;
  // Shows the lines of a posting and waits for the user's yes.
  virtual bool ConfirmPosting(std::string_view title, const std::vector<PostingLine>& lines) = 0;
  // Shows the rows of a drill-down and waits until they are closed.
  virtual void Detail(std::string_view title, DataSet& rows) = 0;
  // A long gathering has done `value` of `of` steps. Raises the action's end when the user cancelled it.
  virtual void Progress(int64_t value, int64_t of, std::string_view text) = 0;
  virtual void Busy(bool on) = 0;
  // Tells what a person should notice and needn't answer.
  virtual void Note(std::string_view text) = 0;
  // Shows a form over the others and works on its events until it is closed.
  virtual void RunModal(Form& form) = 0;
  virtual void LaunchReport(const ReportLaunch& report) = 0;
};

}  // namespace orv
