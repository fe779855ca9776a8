#include "alert_player.hpp"

namespace brindlewort::fuzz {

namespace {

/// Components are counted by a file that is open while there are any: one that stays saves opening it.
bw_alert* keepCountOpen() {
  static bw_alert* const one = bw_alert_create();
  return one;
}

void noteHelp(bw_alert* h, Transcript& t) {
  char* text = nullptr;
  t.integer(bw_alert_get_script_help(h, &text));
  t.takeText(text);
}

}  // namespace

AlertPlayer::AlertPlayer(const Scripts& scripts)
    : scripts_(scripts), handle_(bw_alert_create()), listener_{handle_.get(), &transcript_} {
  require(keepCountOpen() && handle_, "a handle can be made");
  listener_.listen();
}

void AlertPlayer::Listener::listen() {
  bw_alert_on_alert(handle, onAlert, this);
  bw_alert_on_script_error(handle, onError, this);
}

void AlertPlayer::onAlert(void* user, const char* symbol, const char* name, double date, double price) {
  const Listener& listener = *static_cast<Listener*>(user);
  Transcript& t = *listener.transcript;
  t.text(symbol);
  t.text(name);
  t.number(date);
  t.number(price);
  noteHelp(listener.handle, t);
}

void AlertPlayer::onError(void* user, const char* symbol, const char* name, const char* description) {
  const Listener& listener = *static_cast<Listener*>(user);
  Transcript& t = *listener.transcript;
  t.text(symbol);
  t.text(name);
  t.text(description);
  noteHelp(listener.handle, t);
}

std::span<const Call<AlertPlayer>> AlertPlayer::calls() {
  using P = AlertPlayer;
  static constexpr Call<P> kCalls[] = {
      {'a', "nh", &P::append},         {'b', "nh", &P::appendMany}, {'e', "kih", &P::edit},
      {'j', "kk", &P::editDate},       {'c', "", &P::clear},        {'s', "s", &P::setScript},
      {'y', "v", &P::setSymbol},       {'n', "v", &P::setName},     {'v', "s", &P::evaluate},
      {'i', "i", &P::initialise},      {'p', "s", &P::prepare},     {'A', "nh", &P::appendLiving},
      {'E', "kih", &P::editLiving},    {'q', "ik", &P::queries},    {'d', "iiiiiid", &P::dates},
      {'x', "inh", &P::callFromEvent}, {'z', "dd", &P::refusals},   {'!', "", &P::compareNow},
  };
  return kCalls;
}

void AlertPlayer::play(char letter, Line line) {
  playCall(*this, calls(), letter, line);
}

// ---- How calls are made

void AlertPlayer::living(Calls::Call call, Calls::Results results) {
  transcript_.clear();
  call(handle_.get(), transcript_);
  if (!setUp_ || !scriptTaken_) results = Calls::Results::kDoNotCount;
  journal_.note(std::move(call), transcript_.str(), results);
}

void AlertPlayer::compare() {
  if (journal_.told() || clockInside_ || !prepared_) return;
  Transcript transcript;
  const AlertHandle fresh(bw_alert_create());
  Listener listener{fresh.get(), &transcript};
  listener.listen();
  journal_.replay(fresh.get(), transcript, "alert: a fresh handle that is told the same answers the same");
}

/// The host's own texts and the script.
void AlertPlayer::tell(bw_alert* h) const {
  bw_alert_set_symbol(h, symbol_.c_str());
  bw_alert_set_alert_name(h, name_.c_str());
  bw_alert_set_alert_script(h, script_.c_str());
}

/// What the last evaluation of the plain way told depends on the bars and the script alone. `call` makes the
/// fresh handle, which has all bars but evaluated nothing yet, do the same.
void AlertPlayer::compareEvaluation(const Calls::Call& call) {
  const bool worthIt = std::exchange(hasPast_, true);
  if (!worthIt || dependsOnClock(script_)) return;
  Transcript transcript;
  const AlertHandle fresh(bw_alert_create());
  Listener listener{fresh.get(), &transcript};
  tell(fresh.get());
  listener.listen();
  call(fresh.get(), transcript);
  requireSame(transcript_.str(), transcript.str(),
              "alert: events equal those of a fresh handle with the same bars");
}

// ---- The plain way

void AlertPlayer::append(Line& line) {
  const std::vector<Row> rows = bars_.newRows(line);
  // Each bar is an evaluation over all bars: a few are enough.
  for (std::size_t i = 0; i < rows.size() && i < 2; ++i) {
    const Row& row = rows[i];
    transcript_.clear();
    require(bw_alert_append_record(handle_.get(), row.date, row.open, row.high, row.low, row.close,
                                   volumeOf(row), row.lastTrade) == 0,
            "alert: a bar is added");
    bars_.append(row);
  }
  if (rows.empty()) return;
  compareEvaluation([&](bw_alert* h, Transcript&) {
    const std::vector<double> all = bars_.packed(7);
    bw_alert_append_records(h, all.data(), bars_.rows().size());
  });
}

void AlertPlayer::appendMany(Line& line) {
  const std::vector<Row> rows = bars_.newRows(line);
  const std::vector<double> numbers = packed(rows, 7);
  transcript_.clear();
  require(bw_alert_append_records(handle_.get(), numbers.data(), rows.size()) == 0, "alert: bars are added");
  for (const Row& row : rows) bars_.append(row);
  if (rows.empty()) return;
  compareEvaluation([&](bw_alert* h, Transcript&) {
    const std::vector<double> all = bars_.packed(7);
    bw_alert_append_records(h, all.data(), bars_.rows().size());
  });
}

void AlertPlayer::edit(Line& line) {
  const Row row = bars_.row(line);
  const auto call = [&row](bw_alert* h) {
    int32_t result = 7;
    require(bw_alert_edit_record(h, row.date, row.open, row.high, row.low, row.close, volumeOf(row),
                                 row.lastTrade, &result) == 0,
            "alert: an edit is answered");
    return result;
  };
  transcript_.clear();
  const int32_t result = call(handle_.get());
  require(result == (bars_.edit(row) ? -1 : 0), "alert: the first bar of a date is edited");
  hasPast_ = true;
  if (result == 0) return;
  compareEvaluation([&](bw_alert* h, Transcript& t) {
    const std::vector<double> all = bars_.packed(7);
    bw_alert_append_records(h, all.data(), bars_.rows().size());
    t.clear();
    call(h);
  });
}

void AlertPlayer::editDate(Line& line) {
  const double from = bars_.date(line), to = bars_.date(line);
  int32_t result = 7;
  require(bw_alert_edit_jdate(handle_.get(), from, to, &result) == 0 &&
              result == (bars_.editDate(from, to) ? -1 : 0),
          "alert: the first bar of a date gets another");
  hasPast_ = true;
}

/// What stays of a handle behind this: its texts, and that it was set up.
void AlertPlayer::clear(Line&) {
  compare();
  require(bw_alert_clear_records(handle_.get()) == 0, "alert: bars are cleared");
  bars_.clear();
  livingBars_.clear();
  hasPast_ = true;
  journal_.clear();
  clockInside_ = setUp_ = scriptTaken_ = false;
  const auto restore = [initialised = initialised_, prepared = prepared_, symbol = symbol_, name = name_,
                        script = script_](bw_alert* h, Transcript&) {
    int32_t result = 0;
    if (initialised) bw_alert_initialise_transient_store(h, 0);
    if (prepared) bw_alert_process_scrip_data(h, "CLOSE > 1", &result);
    bw_alert_set_symbol(h, symbol.c_str());
    bw_alert_set_alert_name(h, name.c_str());
    bw_alert_set_alert_script(h, script.c_str());
    bw_alert_clear_records(h);
  };
  journal_.note(restore, "", Calls::Results::kDoNotCount);
}

/// Set up for the incremental way, that one runs; else the plain one, over bars of both.
void AlertPlayer::setScript(Line& line) {
  script_ = scripts_.of(line);
  living(
      [script = script_](bw_alert* h, Transcript& t) {
        char* text = nullptr;
        t.integer(bw_alert_set_alert_script(h, script.c_str()));
        t.integer(bw_alert_get_alert_script(h, &text));
        t.takeText(text);
      },
      initialised_ ? Calls::Results::kCount : Calls::Results::kDoNotCount);
}

void AlertPlayer::setSymbol(Line& line) {
  symbol_ = line.text();
  living([symbol = symbol_](bw_alert* h, Transcript& t) {
    char* text = nullptr;
    t.integer(bw_alert_set_symbol(h, symbol.c_str()));
    t.integer(bw_alert_get_symbol(h, &text));
    t.takeText(text);
  });
}

void AlertPlayer::setName(Line& line) {
  name_ = line.text();
  living([name = name_](bw_alert* h, Transcript& t) {
    char* text = nullptr;
    t.integer(bw_alert_set_alert_name(h, name.c_str()));
    t.integer(bw_alert_get_alert_name(h, &text));
    t.takeText(text);
  });
}

void AlertPlayer::evaluate(Line& line) {
  script_ = scripts_.of(line);
  const Calls::Call call = [script = script_](bw_alert* h, Transcript& t) {
    int32_t result = 7;
    t.integer(bw_alert_evaluate(h, script.c_str(), &result));
    t.integer(result);
    if (script.size() >= 5) noteHelp(h, t);
  };
  living(call, Calls::Results::kDoNotCount);
  compareEvaluation([&](bw_alert* h, Transcript& t) {
    const std::vector<double> all = bars_.packed(7);
    bw_alert_set_alert_script(h, "");
    bw_alert_append_records(h, all.data(), bars_.rows().size());
    t.clear();
    call(h, t);
  });
}

// ---- The incremental way

void AlertPlayer::initialise(Line& line) {
  initialised_ = setUp_ = true;
  living([size = line.integer()](bw_alert* h, Transcript& t) {
    t.integer(bw_alert_initialise_transient_store(h, size));
  });
}

void AlertPlayer::prepare(Line& line) {
  const std::string script = scripts_.of(line);
  prepared_ = true;
  clockInside_ = clockInside_ || dependsOnClock(script);
  living([script](bw_alert* h, Transcript& t) {
    int32_t result = 7;
    t.integer(bw_alert_process_scrip_data(h, script.c_str(), &result));
    t.integer(result);
  });
  Transcript taken;
  taken.integer(0);
  taken.integer(1);
  scriptTaken_ = scriptTaken_ || transcript_.str() == taken.str();
}

void AlertPlayer::appendLiving(Line& line) {
  for (const Row& row : livingBars_.newRows(line)) {
    living([row](bw_alert* h, Transcript& t) {
      t.integer(bw_alert_append_record_opt(h, row.date, row.open, row.high, row.low, row.close, volumeOf(row),
                                           row.lastTrade));
    });
    livingBars_.append(row);
    bars_.append(row);
  }
}

/// Edits both ways' bars at the same row.
void AlertPlayer::editLiving(Line& line) {
  const Row row = livingBars_.row(line);
  const std::ptrdiff_t at = livingBars_.find(row.date);
  living([row](bw_alert* h, Transcript& t) {
    int32_t result = 7;
    t.integer(bw_alert_edit_record_opt(h, row.date, row.open, row.high, row.low, row.close, volumeOf(row),
                                       row.lastTrade, &result));
    t.integer(result);
  });
  hasPast_ = true;
  if (at < 0) return;
  livingBars_.replace(static_cast<std::size_t>(at), row);
  bars_.replace(static_cast<std::size_t>(at), row);
}

// ---- Questions

void AlertPlayer::queries(Line& line) {
  bw_alert* h = handle_.get();
  const int32_t index = line.integer();
  const std::size_t rows = bars_.rows().size();
  const bool inside = index >= 1 && static_cast<std::size_t>(index) <= rows;
  int32_t count = -5, volume = 0, result = 7;
  double d = 1, o = 2, high = 3, l = 4, c = 5;
  require(bw_alert_get_record_count(h, &count) == 0 && count == static_cast<int32_t>(rows),
          "alert: count of bars");
  require(bw_alert_get_jdate(h, index, &d) == 0, "alert: a date is told");
  Transcript told, expected;
  const Row row = inside ? bars_.rows()[static_cast<std::size_t>(index - 1)] : Row{0.0, 2, 3, 4, 5, 0, 0};
  bw_alert_get_record_by_index(h, index, nullptr, &o, &high, &l, &c, &volume, &result);
  for (double value : {d, o, high, l, c}) told.number(value);
  for (double value : {row.date, row.open, row.high, row.low, row.close}) expected.number(value);
  told.integer(volume);
  expected.integer(static_cast<int32_t>(row.volume));
  told.integer(result);
  expected.integer(inside ? -1 : 0);
  requireSame(told.str(), expected.str(), "alert: a bar by its number is the bar that was given");
  const double date = bars_.date(line);
  require(bw_alert_get_record_by_jdate(h, date, &o, nullptr, nullptr, nullptr, nullptr, &result) == 0 &&
              result == (bars_.find(date) < 0 ? 0 : -1),
          "alert: a bar by its date");
  require(bw_alert_get_variable_values_log(h, "/no/such/place") == 0, "alert: a log is accepted");
}

void AlertPlayer::dates(Line& line) {
  int32_t part[6];
  for (int32_t& p : part) p = line.integer();
  double date = 0.0;
  bw_alert* h = handle_.get();
  require(bw_alert_to_julian_date(h, part[0], part[1], part[2], part[3], part[4], part[5], 999, &date) == 0,
          "alert: a date is made");
  for (double asked : {date, line.number()}) {
    char* text = nullptr;
    require(bw_alert_from_julian_date(h, asked, &text) == 0 && text, "alert: a date is written");
    bw_free(text);
  }
}

// ---- Hosts that call from within an event

namespace {

/// What a handler does, by number, at the first events.
struct Meddler {
  bw_alert* handle;
  const Scripts* scripts;
  std::size_t what;
  int left;

  void act() {
    if (left-- <= 0) return;
    int32_t result = 0;
    switch (what) {
      case 0:
        bw_alert_append_record(handle, 2444500.5, 1, 2, 0.5, 1.5, 10, 0);
        break;
      case 1:
        bw_alert_append_record_opt(handle, 2444501.5, 1, 2, 0.5, 1.5, 10, 0);
        break;
      case 2:
        bw_alert_set_alert_script(handle, "CLOSE < 0");
        break;
      case 3:
        bw_alert_evaluate(handle, "NONSENSE(1)", &result);
        break;
      case 4:
        bw_alert_clear_records(handle);
        break;
      case 5:
        bw_alert_on_alert(handle, nullptr, nullptr);
        bw_alert_on_script_error(handle, nullptr, nullptr);
        break;
      case 6:
        bw_alert_initialise_transient_store(handle, 20);
        bw_alert_process_scrip_data(handle, "SET B = EMA(CLOSE, 2)\r\nB > 0", &result);
        break;
      default:
        bw_alert_set_symbol(handle, "OTHER");
        bw_alert_edit_record_opt(handle, 2444300.5, 9, 9, 9, 9, 9, 9, &result);
        break;
    }
  }
};

void meddle(void* user, const char*, const char*, double, double) {
  static_cast<Meddler*>(user)->act();
}
void meddleOnError(void* user, const char*, const char*, const char*) {
  static_cast<Meddler*>(user)->act();
}

}  // namespace

/// On a handle of its own, since what comes of it is only that nothing breaks.
void AlertPlayer::callFromEvent(Line& line) {
  Meddler meddler{nullptr, &scripts_, line.choice(8), 3};
  const AlertHandle other(bw_alert_create());
  meddler.handle = other.get();
  int32_t result = 0;
  bw_alert_on_alert(other.get(), meddle, &meddler);
  bw_alert_on_script_error(other.get(), meddleOnError, &meddler);
  bw_alert_initialise_transient_store(other.get(), 30);
  const std::string script = script_.size() < 5 ? "CLOSE > 0" : script_;
  bw_alert_process_scrip_data(other.get(), script.c_str(), &result);
  bw_alert_set_alert_script(other.get(), script.c_str());
  std::size_t i = 0;
  for (const Row& row : Model().newRows(line)) {
    if (++i > 6) break;
    const auto add = i % 2 ? bw_alert_append_record_opt : bw_alert_append_record;
    add(other.get(), row.date, row.open, row.high, row.low, row.close, volumeOf(row), row.lastTrade);
  }
}

void AlertPlayer::refusals(Line& line) {
  bw_alert* h = handle_.get();
  const double row[] = {line.number(), 2, 3, 1, 2, line.number(), line.number()};
  const AlertHandle other(bw_alert_create());
  require(bw_alert_append_records(other.get(), row, 1) == (fitsVolume(row[5]) ? 0 : 1),
          "alert: a volume beyond whole numbers is refused");
  const bool refused =
      bw_alert_append_records(nullptr, row, 1) == -1 && bw_alert_append_records(h, nullptr, 1) == -1 &&
      bw_alert_append_records(h, nullptr, 0) == 0 &&
      bw_alert_edit_record(h, 1, 1, 1, 1, 1, 1, 1, nullptr) == -1 &&
      bw_alert_get_record_by_index(h, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) ==
          -1 &&
      bw_alert_get_record_by_jdate(h, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) == -1 &&
      bw_alert_get_record_count(h, nullptr) == -1 && bw_alert_get_jdate(h, 1, nullptr) == -1 &&
      bw_alert_edit_jdate(h, 1, 2, nullptr) == -1 &&
      bw_alert_to_julian_date(h, 1, 1, 1, 1, 1, 1, 1, nullptr) == -1 &&
      bw_alert_from_julian_date(h, 1, nullptr) == -1 && bw_alert_get_script_help(h, nullptr) == -1 &&
      bw_alert_get_symbol(h, nullptr) == -1 && bw_alert_get_alert_name(h, nullptr) == -1 &&
      bw_alert_get_alert_script(h, nullptr) == -1 && bw_alert_evaluate(h, "CLOSE > 1", nullptr) == -1 &&
      bw_alert_process_scrip_data(h, "CLOSE > 1", nullptr) == -1 &&
      bw_alert_edit_record_opt(h, 1, 1, 1, 1, 1, 1, 1, nullptr) == -1 &&
      bw_alert_set_symbol(nullptr, "") == -1;
  require(refused, "alert: null is refused");
  require(bw_alert_cancel(nullptr) == -1 && bw_alert_cancel(other.get()) == 0,
          "alert: cancelling is answered, run or not");
}

}  // namespace brindlewort::fuzz
