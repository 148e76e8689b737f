// States and events of a working set, in the order in which they happen.
#include <gtest/gtest.h>

#include <stdexcept>

#include "toolkit/client_dataset.h"
#include "toolkit/text.h"

namespace orv {
namespace {

struct Contas : TClientDataSet {
  using TClientDataSet::TClientDataSet;
  Field Codigo{*this, "Codigo", FieldType::String, 3};
  Field Nome{*this, "Nome", FieldType::String, 10};
  Field Valor{*this, "Valor", FieldType::Currency};
  Field Data{*this, "Data", FieldType::Date};
  Field Marca{*this, "Marca", FieldType::String, 1};
};

class Events : public testing::Test {
 protected:
  Events() {
    set.CreateDataSet();
    for (const char* code : {"A", "B", "C"}) {
      set.Append();
      set.Codigo = code;
      set.Valor = Currency(1);
      set.Post();
    }
    set.First();
  }

  void Listen() {
    const auto note = [this](Event& event, const char* name) {
      event = [this, name] { trace += (trace.empty() ? "" : " ") + std::string(name); };
    };
    note(set.BeforeInsert, "BeforeInsert"), note(set.OnNewRecord, "OnNewRecord");
    note(set.AfterInsert, "AfterInsert"), note(set.BeforeEdit, "BeforeEdit");
    note(set.AfterEdit, "AfterEdit"), note(set.BeforePost, "BeforePost");
    note(set.AfterPost, "AfterPost"), note(set.BeforeCancel, "BeforeCancel");
    note(set.AfterCancel, "AfterCancel"), note(set.BeforeDelete, "BeforeDelete");
    note(set.AfterDelete, "AfterDelete"), note(set.BeforeScroll, "BeforeScroll");
    note(set.AfterScroll, "AfterScroll"), note(set.AfterOpen, "AfterOpen");
    note(set.AfterClose, "AfterClose");
  }
  std::string Trace() { return std::exchange(trace, ""); }

  // The codes as shown, the current row in brackets.
  std::string Shown() {
    std::string text;
    for (int64_t row = 0; row < set.DisplayCount(); ++row) {
      const std::string code = set.Cell(row, set.Codigo).AsString();
      text += row == set.DisplayRow() ? "[" + code + "]" : code;
    }
    return text;
  }

  Contas set{"TbContas"};
  std::string trace;
};

TEST_F(Events, OneSequenceForEveryChange) {
  Listen();
  set.Next();
  EXPECT_EQ(Trace(), "BeforeScroll AfterScroll");
  set.Edit();
  set.Valor = Currency(5);
  EXPECT_EQ(Trace(), "BeforeEdit AfterEdit");
  set.Next();
  EXPECT_EQ(Trace(), "BeforePost AfterPost BeforeScroll AfterScroll");
  set.Insert();
  EXPECT_EQ(Trace(), "BeforeInsert BeforeScroll OnNewRecord AfterInsert AfterScroll");
  EXPECT_EQ(Shown(), "AB[]C");
  set.Cancel();
  EXPECT_EQ(Trace(), "BeforeCancel BeforeScroll AfterCancel AfterScroll");
  EXPECT_EQ(Shown(), "AB[C]");
  set.Append();
  set.Codigo = "D";
  EXPECT_EQ(set.RecordCount(), 3);
  EXPECT_EQ(set.RecNo(), 4);
  Trace();
  set.First();
  EXPECT_EQ(Trace(), "BeforePost AfterPost BeforeScroll AfterScroll");
  EXPECT_EQ(Shown(), "[A]BCD");
  set.Delete();
  EXPECT_EQ(Trace(), "BeforeDelete BeforeScroll AfterDelete AfterScroll");
  EXPECT_EQ(Shown(), "[B]CD");
  set.Edit();
  set.Cancel();
  EXPECT_EQ(Trace(), "BeforeEdit AfterEdit BeforeCancel AfterCancel");
  set.Close();
  EXPECT_EQ(Trace(), "AfterClose");
  set.Open();
  EXPECT_EQ(Trace(), "AfterOpen");
  EXPECT_TRUE(set.IsEmpty() && set.Bof() && set.Eof());
}

TEST_F(Events, AnUntouchedInsertionIsDropped) {
  set.OnNewRecord = [this] { set.Marca = "S"; };
  set.Append();
  EXPECT_EQ(set.Marca.AsString(), "S");
  set.First();
  EXPECT_EQ(Shown(), "[A]BC");
  // What is set after the insertion began is an entry.
  set.AfterInsert = [this] { set.Codigo = "N"; };
  set.Append();
  set.First();
  EXPECT_EQ(Shown(), "[A]BCN");
}

TEST_F(Events, AnExceptionLeavesTheStateAsItWas) {
  const auto refuse = [] { throw UserError("não"); };
  set.BeforePost = refuse;
  set.Edit();
  set.Codigo = "X";
  EXPECT_THROW(set.Next(), UserError);
  EXPECT_EQ(set.State(), DataSetState::Edit);
  EXPECT_EQ(Shown(), "[X]BC");
  set.BeforeDelete = refuse;
  EXPECT_THROW(set.Delete(), UserError);
  EXPECT_EQ(set.State(), DataSetState::Edit);
  set.Cancel();
  EXPECT_THROW(set.Delete(), UserError);
  EXPECT_EQ(Shown(), "[A]BC");
  set.OnNewRecord = refuse;
  EXPECT_THROW(set.Append(), UserError);
  EXPECT_EQ(set.State(), DataSetState::Browse);
  EXPECT_EQ(Shown(), "[A]BC");
}

TEST_F(Events, HandlersUseTheSetsThemselves) {
  // A running total after each post: walks the set and comes back by its number.
  Currency total;
  set.AfterPost = [&] {
    const int64_t place = set.RecNo();
    total = Currency();
    for (set.First(); !set.Eof(); set.Next()) total += set.Valor.AsCurrency();
    set.SetRecNo(place);
  };
  // A tick posts the row by moving on.
  set.Marca.OnChange = [this] {
    if (set.Editing() && set.Tag == 0) set.Next();
  };
  set.Edit();
  set.Valor = Currency(10);
  set.Marca = "S";
  EXPECT_EQ(total, Currency(12));
  EXPECT_EQ(Shown(), "A[B]C");
  EXPECT_EQ(set.State(), DataSetState::Browse);

  // A new row that its own insertion posts and edits again.
  set.AfterInsert = [this] {
    set.Codigo = "N";
    set.Post();
    set.Edit();
    set.Valor = Currency(100);
  };
  set.Append();
  EXPECT_EQ(set.State(), DataSetState::Edit);
  set.Post();
  EXPECT_EQ(total, Currency(112));
  EXPECT_EQ(Shown(), "ABC[N]");

  // A detail set that follows its master.
  Contas detail("TbDetalhe");
  detail.CreateDataSet();
  for (const char* code : {"A", "B", "A", "N"}) {
    detail.Append();
    detail.Codigo = code;
    detail.Post();
  }
  detail.SetFiltered(true);
  set.AfterScroll = [&] { detail.SetFilter("codigo = '" + set.Codigo.AsString() + "'"); };
  set.AfterPost = nullptr;
  std::string counts;
  for (set.First(); !set.Eof(); set.Next()) counts += std::to_string(detail.RecordCount());
  EXPECT_EQ(counts, "2101");

  // A filter that a handler of the post sets is not undone by the one that caused the post.
  set.AfterScroll = nullptr;
  set.SetFilter("Codigo <> 'Z'");
  set.SetFiltered(true);
  set.AfterPost = [this] { set.SetFilter("Codigo = 'B'"); };
  set.First();
  set.Edit();
  set.Nome = "x";
  set.SetFilter("Codigo <> 'A'");
  EXPECT_EQ(Shown(), "[B]CN");
  EXPECT_EQ(set.FilterText(), "Codigo <> 'A'");
}

TEST_F(Events, WalksThatDeleteOrHideRows) {
  for (set.Last(); !set.Bof();) {
    set.Codigo.AsString() == "B" ? set.Delete() : set.Prior();
    if (set.IsEmpty()) break;
  }
  EXPECT_EQ(Shown(), "[A]C");
  int visits = 0;
  for (set.First(); !set.Eof(); ++visits) set.Delete();
  EXPECT_EQ(visits, 2);
  EXPECT_TRUE(set.Bof() && set.Eof());
  EXPECT_THROW(set.Delete(), UserError);
  // Editing an empty set begins its first row.
  set.Edit();
  EXPECT_EQ(set.State(), DataSetState::Insert);
}

}  // namespace
}  // namespace orv
