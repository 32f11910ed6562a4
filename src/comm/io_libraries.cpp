#include "comm/io_libraries.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "comm/builtin_visa.h"
#include "core/files.h"
#include "platform/shared_library.h"

namespace corlune {

namespace {

// One row of a library's list: an exported name and the pointer variable that receives its address.
struct Binding {
  const char* name;
  void* slot;
  bool optional = false;
};

struct BoundLibrary {
  std::shared_ptr<LibraryState> state;
  LibraryChoice choice;
  std::vector<std::string> defaultNames;
  std::string programFolder;
  std::vector<Binding> bindings;
  std::optional<SharedLibrary> library;
};

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "; ") + line;
  return text;
}

bool Bind(BoundLibrary& bound, std::string* problem) {
  if (bound.library) return true;
  const std::string& title = bound.state->Title;
  std::vector<std::string>& attempts = bound.state->Failures;
  attempts.clear();
  if (bound.choice.none) {
    *problem = title + ": switched off";
    attempts.emplace_back("switched off");
    return false;
  }
  const std::vector<std::string> names =
      bound.choice.file.empty() ? bound.defaultNames : std::vector<std::string>{bound.choice.file};
  auto library = OpenFirst(names, bound.programFolder, &attempts);
  if (!library) {
    const bool there = std::any_of(names.begin(), names.end(), [&](const std::string& name) {
      return FileExists(name) || FileExists(JoinPath(bound.programFolder, name));
    });
    *problem = title + (there ? " library found but unusable: " : " library not found: ") + Joined(attempts);
    return false;
  }
  // Addresses arrive as void*; they are copied into the typed pointers only once all are there.
  std::vector<void*> addresses(bound.bindings.size(), nullptr);
  std::vector<SymbolRow> rows;
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    rows.push_back({bound.bindings[i].name, &addresses[i], bound.bindings[i].optional});
  }
  std::string missing;
  if (!LoadSymbols(*library, rows, &missing)) {
    attempts.push_back(library->LoadedFrom() + ": symbol " + missing + " missing");
    *problem = title + " library found but unusable: " + attempts.back();
    return false;
  }
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    std::memcpy(bound.bindings[i].slot, &addresses[i], sizeof(void*));
  }
  bound.library = std::move(library);
  bound.state->LoadedFrom = bound.library->LoadedFrom();
  return true;
}

// A table and the library that it points into.
template <typename Table>
struct TableOwner {
  Table table;
  BoundLibrary bound;
};

template <typename Table>
LibraryLoader<Table> MakeLoader(const LibraryChoice& choice, const std::string& programFolder,
                                const std::shared_ptr<LibraryState>& state,
                                std::initializer_list<const char*> names,
                                std::vector<Binding> (*bindings)(Table&)) {
  auto owner = std::make_shared<TableOwner<Table>>();
  owner->bound.state = state;
  owner->bound.choice = choice;
  owner->bound.defaultNames.assign(names.begin(), names.end());
  owner->bound.programFolder = programFolder;
  owner->bound.bindings = bindings(owner->table);
  return [owner](std::string* problem) -> const Table* {
    if (!Bind(owner->bound, problem)) return nullptr;
    owner->table.Origin = owner->bound.state->Title + " library: " + owner->bound.state->LoadedFrom;
    return &owner->table;
  };
}

}  // namespace

LibraryLoader<VisaTable> VisaLoader(const LibraryChoice& choice, const std::string& programFolder,
                                    const std::shared_ptr<LibraryState>& state) {
#ifdef _WIN32
  const auto names = {"VISA32.DLL"};
#else
  const auto names = {"libvisa.so", "libvisa.so.0", "librsvisa.so", "libktvisa32.so"};
#endif
  auto search = MakeLoader<VisaTable>(choice, programFolder, state, names, [](VisaTable& t) {
    return std::vector<Binding>{{"viOpenDefaultRM", &t.OpenDefaultRM},
                                {"viFindRsrc", &t.FindRsrc},
                                {"viFindNext", &t.FindNext},
                                {"viOpen", &t.Open},
                                {"viClose", &t.Close},
                                {"viSetAttribute", &t.SetAttribute},
                                {"viRead", &t.Read},
                                {"viWrite", &t.Write},
                                {"viReadToFile", &t.ReadToFile},
                                {"viReadSTB", &t.ReadSTB},
                                {"viClear", &t.Clear},
                                {"viGpibControlREN", &t.GpibControlREN}};
  });
  const auto ownVisa = [state]() -> const VisaTable* {
    state->LoadedFrom = "built in, over the kernel's USBTMC devices";
    return &BuiltinVisa(SystemUsbTmcDevices());
  };
  if (choice.builtin) return [ownVisa](std::string*) { return ownVisa(); };
  const bool mayReplace = choice.file.empty() && !choice.none;
  return [search, ownVisa, mayReplace](std::string* problem) {
    const VisaTable* const found = search(problem);
    if (found != nullptr || !mayReplace || SystemUsbTmcDevices().List().empty()) return found;
    problem->clear();
    return ownVisa();
  };
}

LibraryLoader<Ni488Table> Ni488Loader(const LibraryChoice& choice, const std::string& programFolder,
                                      const std::shared_ptr<LibraryState>& state) {
#ifdef _WIN32
  const auto names = {"Gpib-32.dll"};
#else
  const auto names = {"libgpib.so.0", "libgpib.so"};
#endif
  return MakeLoader<Ni488Table>(choice, programFolder, state, names, [](Ni488Table& t) {
    return std::vector<Binding>{{"ibfind", &t.Find},
                                {"ibconfig", &t.Config},
                                {"ibsic", &t.SendInterfaceClear},
                                {"ibsre", &t.RemoteEnable},
                                {"ibcmd", &t.Command},
                                {"ibwrt", &t.Write},
                                {"ibrd", &t.Read},
                                {"ibeos", &t.EndOfString},
                                {"ibeot", &t.EndOfTransfer},
                                {"ibtmo", &t.TimeOut},
                                {"ReadStatusByte", &t.ReadStatusByte},
                                {"ThreadIbsta", &t.Status},
                                {"ThreadIberr", &t.ErrorCode},
                                {"ThreadIbcntl", &t.Count},
                                {"RegisterGpibGlobalsForThread", &t.RegisterGlobals, true},
                                {"UnregisterGpibGlobalsForThread", &t.UnregisterGlobals, true}};
  });
}

LibraryLoader<Usb488Table> Usb488Loader(const LibraryChoice& choice, const std::string& programFolder,
                                        const std::shared_ptr<LibraryState>& state) {
#ifdef _WIN32
  const auto names = {"USB488ps.dll"};
#else
  const auto names = {"libusb488ps.so"};
#endif
  return MakeLoader<Usb488Table>(choice, programFolder, state, names, [](Usb488Table& t) {
    return std::vector<Binding>{
        {"UsbInitialize", &t.Initialize},     {"UsbFinalize", &t.Finalize},
        {"UsbOpenDevice", &t.OpenDevice},     {"UsbCloseDevice", &t.CloseDevice},
        {"UsbSendTextData", &t.SendTextData}, {"UsbReceiveTextData", &t.ReceiveTextData},
        {"UsbGetDataCount", &t.GetDataCount}, {"UsbGetStatus", &t.GetStatus},
        {"UsbGetErrorCode", &t.GetErrorCode}, {"UsbSTBQuery", &t.StatusByteQuery},
        {"UsbSetTimeout", &t.SetTimeout},     {"UsbDevClear", &t.DeviceClear},
        {"UsbSetIFC", &t.SetInterfaceClear},  {"UsbEnableRemote", &t.EnableRemote},
        {"UsbEnableLocal", &t.EnableLocal},   {"UsbCLS", &t.ClearStatus}};
  });
}

LibraryLoader<Ieee32mTable> Ieee32mLoader(const LibraryChoice& choice, const std::string& programFolder,
                                          const std::shared_ptr<LibraryState>& state) {
#ifdef _WIN32
  const auto names = {"IEEE_32M.DLL"};
#else
  const auto names = {"libieee_32m.so"};
#endif
  return MakeLoader<Ieee32mTable>(choice, programFolder, state, names, [](Ieee32mTable& t) {
    return std::vector<Binding>{{"_ieee_board_present", &t.BoardPresent}, {"_ieee_initialize", &t.Initialize},
                                {"_ieee_transmit", &t.Transmit},          {"_ieee_receive", &t.Receive},
                                {"_ieee_spoll", &t.SerialPoll},           {"_ieee_settimeout", &t.SetTimeout},
                                {"_ieee_setinputEOS", &t.SetInputEos}};
  });
}

}  // namespace corlune
