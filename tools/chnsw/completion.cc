// Completing a command line.
#include "completion.h"

#include <algorithm>
#include <iterator>

#include "command_line.h"

namespace chnsw_tool {

namespace {

const char* const kEveryCommand[] = {"--help", "--version"};

// What a command line says up to the word that is being typed.
struct read_line {
  const command* chosen = nullptr;   // none yet
  const argument* awaited = nullptr; // an option whose value is being typed
  std::vector<std::string> words;    // that follow the command, without options and their values
};

class line_reader {
 public:
  explicit line_reader(std::span<const std::string> before) : before_(before) {}

  read_line read() {
    for (place_ = 0; place_ < before_.size(); ++place_) take(before_[place_]);
    return std::move(line_);
  }

  const std::vector<argument>& general() const { return general_; }
  const std::vector<command>& commands() const { return commands_; }

 private:
  static bool has_name(const argument& each, const std::string& name) {
    return each.name == name || each.name.starts_with(name + ",") || each.name.ends_with("," + name);
  }

  static const argument* find(const std::vector<argument>& arguments, const std::string& name) {
    auto found =
        std::find_if(arguments.begin(), arguments.end(), [&](const argument& each) { return has_name(each, name); });
    return found == arguments.end() ? nullptr : &*found;
  }

  static const command* find(const std::vector<command>& commands, const std::string& name) {
    auto found = std::find_if(commands.begin(), commands.end(), [&](const command& each) { return each.name == name; });
    return found == commands.end() ? nullptr : &*found;
  }

  void take(const std::string& word) {
    if (word.starts_with('-') && word != "-") return take_option(word);
    if (const command* next = find(line_.chosen ? line_.chosen->parts : commands_, word); next && line_.words.empty())
      line_.chosen = next;
    else
      line_.words.push_back(word);
  }

  // Skips the option and its value. When the value is what is being typed, the option is the awaited one.
  void take_option(const std::string& word) {
    const argument* named = line_.chosen ? find(line_.chosen->arguments, word) : nullptr;
    if (!named) named = find(general_, word);
    if (!named || named->is_flag()) return;
    if (place_ + 1 < before_.size() && before_[place_ + 1] == "=") ++place_;
    if (place_ + 1 == before_.size()) line_.awaited = named;
    ++place_;
  }

  std::span<const std::string> before_;
  size_t place_ = 0;
  parsed_command_line values_;
  std::vector<argument> general_ = general_options(values_);
  std::vector<command> commands_ = all_commands();
  read_line line_;
};

void offer_value(const argument& of, std::span<const std::string> words, completion& found) {
  found.is_path = of.is_path;
  found.words = of.choices.empty() && of.offered ? of.offered(words) : of.choices;
}

// "--switch" of "-s,--switch".
std::string long_name(const argument& option) {
  return option.name.substr(option.name.rfind(',') + 1);
}

void offer_options(const read_line& line, const std::vector<argument>& general, completion& found) {
  if (line.chosen)
    for (const argument& each : line.chosen->arguments)
      if (each.is_option()) found.words.push_back(long_name(each));
  for (const argument& each : general) found.words.push_back(long_name(each));
  found.words.insert(found.words.end(), std::begin(kEveryCommand), std::end(kEveryCommand));
}

void offer_commands(const std::vector<command>& commands, completion& found) {
  for (const command& each : commands) found.words.push_back(each.name);
}

// The next word of a command: the one that stands at this place, or the last when that takes many.
void offer_word(const read_line& line, completion& found) {
  size_t place = line.words.size();
  for (const argument& each : line.chosen->arguments) {
    if (each.is_option()) continue;
    if (place == 0 || each.takes_many) return offer_value(each, line.words, found);
    --place;
  }
}

void keep_what_begins_like(const std::string& typed, std::vector<std::string>& words) {
  std::erase_if(words, [&](const std::string& word) { return !word.starts_with(typed); });
}

} // namespace

completion complete(std::span<const std::string> words) {
  completion found;
  std::vector<std::string> before(words.begin(), words.end());
  if (!before.empty()) {
    found.typed = before.back();
    before.pop_back();
  }
  if (found.typed == "=") { // from bash, as long as nothing is typed after the sign
    before.push_back("=");
    found.typed.clear();
  }
  if (const size_t sign = found.typed.find('='); found.typed.starts_with("--") && sign != std::string::npos) {
    before.push_back(found.typed.substr(0, sign));
    found.before = found.typed.substr(0, sign + 1);
    found.typed.erase(0, sign + 1);
  }

  line_reader reader(before);
  const read_line line = reader.read();
  if (line.awaited)
    offer_value(*line.awaited, line.words, found);
  else if (found.typed.starts_with('-'))
    offer_options(line, reader.general(), found);
  else if (!before.empty() && before.back() == "=")
    return found; // the value of a field
  else if (!line.chosen)
    offer_commands(reader.commands(), found);
  else if (!line.chosen->parts.empty())
    offer_commands(line.chosen->parts, found);
  else
    offer_word(line, found);
  keep_what_begins_like(found.typed, found.words);
  return found;
}

std::string completion_text(const completion& found) {
  std::string text = found.is_path ? "path\n" : "words\n";
  text += found.before + "\n" + found.typed + "\n";
  for (const std::string& word : found.words) text += word + "\n";
  return text;
}

} // namespace chnsw_tool
