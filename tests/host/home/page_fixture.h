#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/home/page.h"
#include "host/home/take_recorder.h"
#include "host/home/work.h"
#include "tests/machine/simulated_wave_in.h"
#include "tests/machine/simulated_wave_out.h"
#include "tests/machine/simulation.h"

namespace home_test {

/// A machine in memory, whose time passes only if the test lets it.
struct Machine {
  [[nodiscard]] home::Sound Get() { return {waveIn, waveOut, time, time}; }

  machine::Simulation time;
  machine::SimulatedWaveIn waveIn;
  machine::SimulatedWaveOut waveOut;
};

/// Notes what a page asks the window for.
class NotedFrame final : public home::Frame {
 public:
  void ShowTags() override { ++shownTags; }
  void ShowPage(home::PageId page, const std::u16string& tag) override {
    shownPages.emplace_back(page, tag);
  }
  void Report(const home::Outcome& outcome) override { reports.push_back(outcome); }

  int shownTags = 0;
  std::vector<std::pair<home::PageId, std::u16string>> shownPages;
  std::vector<home::Outcome> reports;
};

/// Notes what a page asks for, and answers when the test says so.
class PageWork final : public home::Work {
 public:
  void OnLoaded(std::function<void(std::shared_ptr<const home::Shelf>)> /*show*/) override {}
  void Load() override {}
  void LoadIfChanged() override {}
  void Play(const std::u16string& tag, Answer answer) override {
    played.push_back(tag);
    endPlaying = std::move(answer);
  }
  void StopPlaying() override { ++stops; }
  void Delete(const std::vector<std::u16string>& /*tags*/, DeletedAnswer /*answer*/) override {}
  void ListTrash(TrashAnswer answer) override { endListing = std::move(answer); }
  void Restore(const std::vector<std::u16string>& trashed, Answer answer) override {
    restored = trashed;
    endRestoring = std::move(answer);
  }
  void Compare(const home::Lesson& lesson, ComparedAnswer answer) override {
    compared.push_back(lesson);
    endComparing = std::move(answer);
  }
  void Teach(const home::Lesson& lesson, TaughtAnswer answer) override {
    taught.push_back(lesson);
    endTeaching = std::move(answer);
  }

  int stops = 0;
  std::vector<std::u16string> played;
  std::vector<home::Lesson> compared;
  std::vector<home::Lesson> taught;
  Answer endPlaying;
  std::vector<std::u16string> restored;
  TrashAnswer endListing;
  Answer endRestoring;
  ComparedAnswer endComparing;
  TaughtAnswer endTeaching;
};

/// Some people, one of them with several numbers, of which one has a tag.
inline home::Shelf MakePeople() {
  home::Shelf shelf;
  shelf.people = {
      {11,
       u"Anna Berg",
       u"Harbour Works",
       {{u"Mobile", u"+49 171 555 0101"}, {u"Home", u"+49 30 555 0102"}, {u"Business", u"0103"}}},
      {12, u"דוד לוי", u"", {{u"HomeFax", u"+972 50 555 0144"}}},
      {13,
       u"Élodie de la Fontaine-Montgomery of the Long Names",
       u"Windmill & Sons of Somewhere",
       {{u"Business2", u"+33 1 99 00 12 34 56 78 90 ext. 1234"}}},
      {14, u"李小龙", u"", {{u"Mobile", u"+86 10 5555 0199"}}},
      {15, u"Robert", u"", {{u"Mobile", u"555 0107"}}}};
  home::Tag tag;
  tag.name = u"100";
  tag.oid = 11;
  tag.contact = u"Anna Berg";
  tag.kind = u"Mobile";
  tag.number = u"+49 171 555 0101";
  home::Tag other;
  other.name = u"200";
  other.oid = 14;
  other.contact = u"李小龙";
  other.kind = u"Mobile";
  shelf.tags = {tag, other};
  return shelf;
}

}  // namespace home_test
