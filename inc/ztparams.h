// Parameter bags (named values with a result, parsed from and written to one
// line of text) and the typed arrays of values.
#pragma once

#include "ztcont.h"

// Declared against incomplete value types: ztvalue.h includes this header
// before the value classes, since its value container holds a ZTValueArray.
// Callers include zt.h, which completes them.
class ZTValue;
class ZTString;
class ZTBool;
class ZTInteger;

// ---------------------------------------------------------------------------
// ZTValueArray

// A pointer array of values: it holds one reference on every value it keeps.
// Null values are refused.
class ZTValueArray : public ZTTPArray<ZTValue> {
  ZT_DECLARE_CLASS(ZTValueArray, ZTObjectCreator)

 public:
  explicit ZTValueArray(int _Grow = DefaultSize);
  // Shares the values of the source.
  ZTValueArray(const ZTValueArray& _Src) = default;
  // Clones the values of the source.
  ZTValueArray& operator=(const ZTValueArray& _Src) = default;

  // The pointer forms store the value itself, the reference forms a clone.
  int Add(const ZTValue* _Val);
  int Add(const ZTValue& _Val);
  // Appends every value of the other array, the same objects.
  int Add(const ZTValueArray& _Other);
  int Append(const ZTValue* _Val) { return Add(_Val); }
  int Append(const ZTValue& _Val) { return Add(_Val); }
  int Insert(int _Idx, const ZTValue* _Val);
  int Insert(int _Idx, const ZTValue& _Val);
  int Set(int _Idx, const ZTValue* _Val);
  int Set(int _Idx, const ZTValue& _Val);

  ZTValue* Get(int _Idx);
  const ZTValue* Get(int _Idx) const;
  ZTValue* operator[](int _Idx) { return Get(_Idx); }
  const ZTValue* operator[](int _Idx) const { return Get(_Idx); }
  // Removes and closes up.
  bool Remove(int _Idx);
  // Position of this very object, -1 when absent.
  int Index(const ZTValue* _Val) const;
  // First position whose value compares equal to _Val, -1 when none.
  int Index(const ZTValue& _Val) const;
};

// ---------------------------------------------------------------------------
// ZTNamedValueArray

// A value array with one name per value at the same index. Names need not be
// unique; lookups find the first match without regard to case.
class ZTNamedValueArray : public ZTValueArray {
  ZT_DECLARE_CLASS(ZTNamedValueArray, ZTObjectCreator)

 public:
  explicit ZTNamedValueArray(int _Grow = DefaultSize);
  // Shares values and names of the source.
  ZTNamedValueArray(const ZTNamedValueArray& _Src) = default;
  // Clones values and names of the source.
  ZTNamedValueArray& operator=(const ZTNamedValueArray& _Src);

  // Every way of removing or copying values keeps the names in step.
  void Assign(const ZTPArray& _Src, bool _Deep) override;
  bool Remove(int _Idx, bool _Shift) override;
  void RemoveAll() override;

  int Add(const char* _Name, const ZTValue* _Val);
  int Add(const char* _Name, const ZTValue& _Val);
  int Add(const ZTNamedValueArray& _Other);
  int Append(const char* _Name, const ZTValue* _Val) { return Add(_Name, _Val); }
  int Append(const char* _Name, const ZTValue& _Val) { return Add(_Name, _Val); }
  int Insert(int _Idx, const char* _Name, const ZTValue* _Val);
  int Insert(int _Idx, const char* _Name, const ZTValue& _Val);
  // Replaces the value and keeps the name.
  int Set(int _Idx, const ZTValue* _Val);

  const ZTString& Name(int _Idx) const;
  const char* GetName(int _Idx) const;
  // First index whose name equals _Name without case, -1 when none.
  int Index(const char* _Name) const;
  using ZTValueArray::Index;

  using ZTValueArray::Get;
  ZTValue* Get(const char* _Name);
  const ZTValue* Get(const char* _Name) const;
  using ZTValueArray::operator[];
  ZTValue* operator[](const char* _Name) { return Get(_Name); }
  const ZTValue* operator[](const char* _Name) const { return Get(_Name); }
  using ZTValueArray::Item;
  // Like Get, but a missing name throws.
  ZTValue* Item(const char* _Name);
  const ZTValue* Item(const char* _Name) const;
  using ZTValueArray::Remove;

 private:
  void StoreName(int _Idx, const char* _Name);

  ZTTPArray<ZTString> m_Names;
};

// ---------------------------------------------------------------------------
// ZTParameter

// The ordered bag of named objects, mostly values, passed to commands,
// notifications, checks, fetches and writes. Names are unique without regard
// to case. The name "Result" is reserved for the result of a command.
//
// Text forms: a line of entries such as  a=1; b='two, three'; 5  (parsed by
// SetFromString, written by CopyIntoString), and templates such as
// "Dear <Name>, ..." whose placeholders are filled from the entries.
class ZTParameter : public ZTNamedObjectArray {
  ZT_DECLARE_CLASS(ZTParameter, ZTObjectCreator)

 public:
  static const char ResultName[];  // "Result"

  ZTParameter();
  // A small grow step keeps short-lived parameters of one or two entries
  // (notifications) cheap.
  explicit ZTParameter(int _GrowStep);
  // Parsed with the default separators.
  ZTParameter(const char* _Text);
  // Shares the entries and the result.
  ZTParameter(const ZTParameter& _Src);
  // Copies (clones) the entries and shares the result.
  ZTParameter& operator=(const ZTParameter& _Src);
  ~ZTParameter() override;

  virtual void SetResult(ZTValue* _Result);
  virtual void SetResult(const ZTValue& _Result);
  // The result, else the entry named "Result" when it is a value, else null.
  virtual const ZTValue* GetResult() const;
  virtual ZTValue* GetResult();

  // Parses a line of entries (_Len -1: up to the terminating zero). A zero
  // separator means the defaults: ":" or "=" between name and value, "," or
  // ";" between entries.
  virtual void SetFromString(const char* _Text, int _Len = -1, char _NameSep = 0,
                             char _ValueSep = 0, bool _Reset = true);
  virtual void AddFromString(const char* _Text, int _Len = -1, char _NameSep = 0,
                             char _ValueSep = 0);
  // With a null format: every entry as name=value, strings in single quotes.
  // With a format: the format is a template whose placeholders <Name> or
  // <Name fmt:format> are replaced by the entries' texts.
  virtual const char* CopyIntoString(ZTString& _Str, const char* _Format) const;
  // The list form: name=value pairs separated by ";", names made up by the
  // parameter left out.
  virtual const char* CopyIntoString(ZTString& _Str) const;

  // The entry's text under the format; a missing entry gives the default or,
  // without one, throws.
  virtual ZTString GetString(const char* _Name, const char* _Format = nullptr,
                             const char* _Default = nullptr) const;
  virtual ZTString GetString(int _Idx, const char* _Format = nullptr,
                             const char* _Default = nullptr) const;
  // The list form.
  virtual ZTString GetString() const;

  // Unnamed pushes go under the made-up name "p<number of entries>"; a text
  // holding ":" or "=" (not enclosed in single quotes) is parsed instead.
  // Each returns what was pushed: the text, or the stored object.
  virtual ZTValue* Push(bool _Val);
  virtual ZTValue* Push(int _Val);
  virtual const char* Push(const char* _Text);
  virtual ZTValue* Push(const ZTString& _Str);
  virtual ZTValue* Push(ZTValue* _Val);
  virtual ZTValue* Push(const ZTValue& _Val);
  virtual ZTObject* Push(ZTObject* _Obj);
  virtual ZTObject* Push(const ZTObject& _Obj);
  // Named pushes append or replace the entry; under "Result" (any case) a
  // value becomes the result. Pointers are stored themselves (a null pointer
  // removes the entry), references as clones, texts and numbers as new values.
  virtual ZTValue* Push(const char* _Name, bool _Val);
  virtual ZTValue* Push(const char* _Name, int _Val);
  virtual const char* Push(const char* _Name, const char* _Text);
  virtual ZTValue* Push(const char* _Name, const ZTString& _Str);
  virtual ZTValue* Push(const char* _Name, ZTValue* _Val);
  virtual ZTValue* Push(const char* _Name, const ZTValue& _Val);
  virtual ZTObject* Push(const char* _Name, ZTObject* _Obj);
  virtual ZTObject* Push(const char* _Name, const ZTObject& _Obj);

  // An entry of that name exists, or the name is "Result".
  virtual bool HasValue(const char* _Name) const;
  // The entry if it is a value; under "Result" the result; else null.
  virtual const ZTValue* GetValue(const char* _Name) const;
  virtual ZTValue* GetValue(const char* _Name);
  virtual const ZTValue* GetValue(int _Idx) const;
  virtual ZTValue* GetValue(int _Idx);
  // Like GetValue, but a missing entry or one that is no value throws.
  virtual const ZTValue& Value(const char* _Name) const;
  virtual ZTValue& Value(const char* _Name);
  virtual const ZTValue& Value(int _Idx) const;
  virtual ZTValue& Value(int _Idx);

  ZTValue& operator[](int _Idx) { return Value(_Idx); }
  const ZTValue& operator[](int _Idx) const { return Value(_Idx); }
  ZTValue& operator[](const char* _Name) { return Value(_Name); }
  const ZTValue& operator[](const char* _Name) const { return Value(_Name); }

  // Typed getters: an unknown name (or index) gives the default.
  int GetInt(const char* _Name, int _Default = 0) const;
  int GetInt(int _Idx, int _Default = 0) const;
  double GetDouble(const char* _Name, double _Default = 0.0) const;
  double GetDouble(int _Idx, double _Default = 0.0) const;
  double GetReal(const char* _Name, double _Default = 0.0) const { return GetDouble(_Name, _Default); }
  double GetReal(int _Idx, double _Default = 0.0) const { return GetDouble(_Idx, _Default); }
  bool GetBool(const char* _Name, bool _Default = false) const;
  bool GetBool(int _Idx, bool _Default = false) const;
  ZTString String(const char* _Name, const char* _Format = nullptr,
                  const char* _Default = nullptr) const;
  ZTString String(int _Idx, const char* _Format = nullptr, const char* _Default = nullptr) const;

  // True for "Result" in any case.
  static bool IsResultName(const char* _Name);

 private:
  // The one place where entries are stored: appends or replaces the entry, or
  // sets the result under "Result".
  ZTObject* Store(const char* _Name, ZTObject* _Obj);
  // The made-up name of the next unnamed entry.
  ZTString NextName() const;
  void AppendList(ZTString& _Str, bool _Named) const;
  void FillTemplate(ZTString& _Str, const char* _Template) const;

  ZTValue* m_Result = nullptr;
};
