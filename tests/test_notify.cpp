#include <functional>
#include <utility>
#include <vector>

#include "test_support.h"

using zt_test::Catch;
using zt_test::WarningCapture;

namespace {

// Records every notification it receives and may act on it.
struct Listener : public ZTObject {
  void Notify(ZTObject* _Sender, unsigned long _Code, ZTParameter*) override {
    m_Calls.emplace_back(_Sender, _Code);
    if (m_OnNotify) m_OnNotify(_Sender, _Code);
  }
  std::vector<std::pair<ZTObject*, unsigned long>> m_Calls;
  std::function<void(ZTObject*, unsigned long)> m_OnNotify;
};
using Calls = std::vector<std::pair<ZTObject*, unsigned long>>;

// Heap in use where objects, handlers, handler lists and registry buckets live.
int Usage() {
  return ZTMemMgr::GetUsageCount(ZTMemCatObject) + ZTMemMgr::GetUsageCount(ZTMemCatContainer);
}

}  // namespace

TEST(ZTObjectNotify, LifeCycleCodesInOrder) {
  WarningCapture capture;
  const int usage = Usage();
  Listener all, deletes, dieing;
  auto* sender = new ZTObject;
  sender->AddNotifyHandler(&all, 2 | 4 | 8);
  sender->AddNotifyHandler(&deletes, 2);
  sender->AddNotifyHandler(&dieing, 4 | 8);
  EXPECT_TRUE(sender->IsFlagSet(ZTObject::FlagNotify));
  sender->Attach();
  sender->Attach();
  sender->DetachNoDelete();
  sender->Detach(1ul);
  sender->Attach();
  dieing.SetFlag(ZTObject::FlagDieing);  // a receiver being deleted is skipped
  bool senderDieing = false;
  deletes.m_OnNotify = [&](ZTObject* _Sender, unsigned long) { senderDieing = _Sender->IsDieing(); };
  sender->Detach();
  EXPECT_EQ(all.m_Calls, (Calls{{sender, 4}, {sender, 4}, {sender, 8}, {sender, 8}, {sender, 4}, {sender, 8}, {sender, 2}}));
  EXPECT_EQ(deletes.m_Calls, (Calls{{sender, 2}}));
  EXPECT_TRUE(senderDieing);
  EXPECT_EQ(dieing.m_Calls.size(), 5u);  // none from the last Detach
  EXPECT_EQ(Usage(), usage);  // object, handlers, list and bucket are all gone
  EXPECT_EQ(ZTObject::GetNotificationHandler(sender), nullptr);

  // An automatic object is never deleted, so it never sends code 2.
  ZTObject automatic;
  automatic.AddNotifyHandler(&deletes, 2 | 8);
  automatic.Detach();
  automatic.Delete();
  EXPECT_EQ(deletes.m_Calls, (Calls{{sender, 2}, {&automatic, 8}}));
  EXPECT_EQ(capture.Text(), "");
}

TEST(ZTObjectNotify, RegistryFollowsHandlersAndOwners) {
  const int usage = Usage();
  Listener first, second;
  {
    ZTObject sender;
    const ZTObject& constSender = sender;
    sender.AddNotifyHandler(nullptr, 4);  // ignored, as are no codes
    sender.AddNotifyHandler(&first, 0);
    EXPECT_EQ(constSender.GetNotifyHandlers(), nullptr);
    sender.AddNotifyHandler(&first, 4);
    sender.AddNotifyHandler(&second, 8);
    const ZTNotifyHandlerList* list = constSender.GetNotifyHandlers();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->GetOwner(), &sender);
    EXPECT_EQ(list->GetCount(), 2u);
    EXPECT_FALSE(ZTObject(sender).IsFlagSet(ZTObject::FlagNotify));  // copies start without
    sender.RemoveNotifyHandler(&first);
    EXPECT_TRUE(sender.IsFlagSet(ZTObject::FlagNotify));
    sender.RemoveNotifyHandler(&second);  // the last one: the list leaves the registry
    EXPECT_FALSE(sender.IsFlagSet(ZTObject::FlagNotify));
    EXPECT_EQ(constSender.GetNotifyHandlers(), nullptr);
    EXPECT_EQ(Usage(), usage);
    sender.AddNotifyHandler(&first, 4);  // taken out by the destructor
  }
  EXPECT_EQ(Usage(), usage);

  ZTObject owner, stranger;
  ZTNotifyHandlerList foreign(&stranger);
  EXPECT_EQ(ZTObject::AddNotificationHandler(nullptr, &foreign), &foreign);
  {
    auto ex = Catch<ZTExceptCondition>([&] { ZTObject::AddNotificationHandler(&owner, &foreign); });
    ASSERT_EQ(ex.GetMsgCount(), 2);
    EXPECT_STREQ(ex.GetMsg(0), "\"Invalid owner relation of notify handler\"");
    EXPECT_STREQ(ex.GetMsg(1), "Condition check failed(_List->GetOwner() == _Owner)");
  }
  // Owners sharing buckets each find their own list; a second list of one
  // owner goes in front, and removal takes both.
  std::vector<ZTObject> many(40);
  for (ZTObject& o : many) ZTObject::AddNotificationHandler(&o, nullptr);
  auto* front = ZTObject::AddNotificationHandler(&many[0], new ZTNotifyHandlerList(&many[0]));
  EXPECT_EQ(ZTObject::GetNotificationHandler(&many[0]), front);
  for (ZTObject& o : many) EXPECT_EQ(ZTObject::GetNotificationHandler(&o)->GetOwner(), &o);
  ZTObject::RemoveNotificationHandler(&many[0]);
  EXPECT_EQ(ZTObject::GetNotificationHandler(&many[0]), nullptr);
  EXPECT_FALSE(many[0].IsFlagSet(ZTObject::FlagNotify));
  many.clear();
  EXPECT_EQ(Usage(), usage);
}

TEST(ZTObjectNotify, ReceiversMayChangeHandlersWhileNotified) {
  const int usage = Usage();
  Listener early, self, late, added;
  auto* sender = new ZTObject;
  sender->Attach();
  for (Listener* l : {&early, &self, &late}) sender->AddNotifyHandler(l, 4);
  early.m_OnNotify = [&](ZTObject* _Sender, unsigned long) { _Sender->RemoveNotifyHandler(&late); };
  self.m_OnNotify = [&](ZTObject* _Sender, unsigned long) {
    _Sender->RemoveNotifyHandler(&self);
    _Sender->AddNotifyHandler(&added, 4);
  };
  sender->Attach();
  EXPECT_TRUE(late.m_Calls.empty());   // removed before its turn
  EXPECT_TRUE(added.m_Calls.empty());  // added during the round
  EXPECT_EQ(self.m_Calls.size(), 1u);

  // The last handlers leave while their list is walked.
  early.m_OnNotify = [&](ZTObject* _Sender, unsigned long) {
    _Sender->RemoveNotifyHandler(&early);
    _Sender->RemoveNotifyHandler(&added);
  };
  sender->Attach();
  EXPECT_TRUE(added.m_Calls.empty());
  EXPECT_FALSE(sender->IsFlagSet(ZTObject::FlagNotify));

  // A receiver forgets the sender when told it is deleted.
  sender->AddNotifyHandler(&early, 2);
  early.m_OnNotify = [&](ZTObject* _Sender, unsigned long) { _Sender->RemoveNotifyHandler(&early); };
  while (sender->Detach() > 0) {
  }
  EXPECT_EQ(early.m_Calls.back(), std::make_pair(sender, 2ul));
  EXPECT_EQ(Usage(), usage);
}

namespace {
// Records the text of one named entry of every notification's parameter.
struct EntryListener : public ZTObject {
  explicit EntryListener(const char* _Entry) : m_Entry(_Entry) {}
  void Notify(ZTObject*, unsigned long _Code, ZTParameter* _Params) override {
    m_Seen.push_back(std::to_string(_Code) + ":" +
                     (_Params ? static_cast<const char*>(_Params->GetString(m_Entry)) : "-"));
  }
  const char* m_Entry;
  std::vector<std::string> m_Seen;
};
}  // namespace

TEST(ZTObjectNotify, DetachAndValueActionsCarryTheirParameter) {
  EntryListener detail("Detail");
  auto* sender = new ZTObject;
  sender->AddNotifyHandler(&detail, 8);
  sender->Attach();
  sender->Attach();
  sender->DetachNoDelete();
  sender->Detach();
  EXPECT_EQ(detail.m_Seen, (std::vector<std::string>{"8:NoDelete", "8:Delete"}));

  EntryListener action("Action");
  ZTInteger value;
  value.SetUseDirtyFunction(true);
  value.AddNotifyHandler(&action, 16);
  value.Set(5);
  value.Set(5);  // no change: no notification
  value.Clean();
  value.Set(6);
  value.RestoreToOrgValue();
  EXPECT_EQ(action.m_Seen,
            (std::vector<std::string>{"16:SetDirty", "16:Changed", "16:Clean", "16:SetDirty",
                                      "16:Changed", "16:Changed", "16:RestoreToOrg"}));
  value.RemoveNotifyHandler(&action);

  // A value that claims handlers without having any is reported.
  WarningCapture capture;
  value.SetFlag(ZTObject::FlagNotify);
  value.Set(7);
  EXPECT_TRUE(capture.Contains("\"Inconsistent state of notification handling\""));
  EXPECT_TRUE(capture.Contains("\"Inconsistent state of notify handling\""));
  value.ClearFlag(ZTObject::FlagNotify);
}
