// Hooks the methods of the XML component in the function tables of its objects. All objects of one kind share
// a table. CINTERFACE declares the interfaces as structures.
#define CINTERFACE

#include "faults/dom_hooks.h"

#include "support/request_watch.h"

#include <msxml2.h>

#include <cstring>
#include <map>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace faults {

namespace {

DomWatch watch;
std::uintptr_t module_begin = 0;
std::uintptr_t module_end = 0;

using Table = void**;

// The original methods, by table and slot.
std::map<std::pair<Table, std::size_t>, void*>& Originals() {
    static std::map<std::pair<Table, std::size_t>, void*> originals;
    return originals;
}

template <class Interface>
Table TableOf(Interface* object) {
    return reinterpret_cast<Table>(const_cast<void*>(static_cast<const void*>(object->lpVtbl)));
}

bool IsFromLibrary(const void* return_address) {
    const auto address = reinterpret_cast<std::uintptr_t>(return_address);
    return address >= module_begin && address < module_end;
}

void WatchNode(IXMLDOMNode* node);
void WatchList(IXMLDOMNodeList* list);
void WatchDocumentInterface(IXMLDOMDocument* document);

// Hooks the table of an interface pointer that the component returned.
void HandedOut(IXMLDOMNode* node) {
    WatchNode(node);
}
void HandedOut(IXMLDOMElement* element) {
    WatchNode(reinterpret_cast<IXMLDOMNode*>(element));
}
void HandedOut(IXMLDOMNodeList* list) {
    WatchList(list);
}
void HandedOut(IXMLDOMDocument* document) {
    WatchDocumentInterface(document);
}

template <class Argument>
void LookAt(Argument argument) {
    if constexpr (std::is_pointer_v<Argument>) {
        using Target = std::remove_pointer_t<Argument>;
        if constexpr (std::is_same_v<Target, IXMLDOMNode*> || std::is_same_v<Target, IXMLDOMElement*> ||
                      std::is_same_v<Target, IXMLDOMNodeList*> || std::is_same_v<Target, IXMLDOMDocument*>) {
            if (argument != nullptr && *argument != nullptr) {
                ++watch.references;
                HandedOut(*argument);
            }
        }
    }
}

template <class Vtbl, class Member>
std::size_t SlotOf(Member Vtbl::*member) {
    // The tables are plain structures of function pointers.
    static const Vtbl table{};
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&(table.*member)) -
                                    reinterpret_cast<const char*>(&table)) /
           sizeof(void*);
}

template <auto Member>
struct Hook;

template <class Vtbl, class Self, class... Arguments,
          HRESULT (STDMETHODCALLTYPE* Vtbl::*Member)(Self*, Arguments...)>
struct Hook<Member> {
    using Function = HRESULT(STDMETHODCALLTYPE*)(Self*, Arguments...);

    static HRESULT STDMETHODCALLTYPE Call(Self* self, Arguments... arguments) {
        const auto original = reinterpret_cast<Function>(Originals().at({TableOf(self), SlotOf(Member)}));
        if (!IsFromLibrary(__builtin_return_address(0))) {
            return original(self, arguments...);
        }
        if (watch.calls.Step()) {
            return watch.code;
        }
        const HRESULT result = original(self, arguments...);
        if (SUCCEEDED(result)) {
            (LookAt(arguments), ...);
        }
        return result;
    }
};

void Put(Table table, std::size_t slot, void* hook) {
    if (!Originals().try_emplace({table, slot}, table[slot]).second) {
        return;
    }
    DWORD former = 0;
    if (VirtualProtect(&table[slot], sizeof(void*), PAGE_READWRITE, &former) == FALSE) {
        throw std::runtime_error("the functions of the XML component cannot be watched");
    }
    table[slot] = hook;
    VirtualProtect(&table[slot], sizeof(void*), former, &former);
}

template <auto Member, class Interface>
void Put(Interface* object) {
    Put(TableOf(object), SlotOf(Member), reinterpret_cast<void*>(&Hook<Member>::Call));
}

ULONG STDMETHODCALLTYPE WatchedAddRef(IUnknown* self) {
    watch.references += IsFromLibrary(__builtin_return_address(0)) ? 1 : 0;
    const auto original = Originals().at({TableOf(self), SlotOf(&IUnknownVtbl::AddRef)});
    return reinterpret_cast<decltype(&WatchedAddRef)>(original)(self);
}

ULONG STDMETHODCALLTYPE WatchedRelease(IUnknown* self) {
    watch.references -= IsFromLibrary(__builtin_return_address(0)) ? 1 : 0;
    const auto original = Originals().at({TableOf(self), SlotOf(&IUnknownVtbl::Release)});
    return reinterpret_cast<decltype(&WatchedRelease)>(original)(self);
}

void WatchUnknown(IUnknown* object);

HRESULT STDMETHODCALLTYPE WatchedQueryInterface(IUnknown* self, REFIID iid, void** object) {
    const auto original = reinterpret_cast<decltype(&WatchedQueryInterface)>(
        Originals().at({TableOf(self), SlotOf(&IUnknownVtbl::QueryInterface)}));
    if (!IsFromLibrary(__builtin_return_address(0))) {
        return original(self, iid, object);
    }
    if (watch.calls.Step()) {
        *object = nullptr;
        return watch.code;
    }
    const HRESULT result = original(self, iid, object);
    if (SUCCEEDED(result)) {
        ++watch.references;
        if (IsEqualIID(iid, IID_IXMLDOMDocument)) {
            WatchDocumentInterface(static_cast<IXMLDOMDocument*>(*object));
        } else if (IsEqualIID(iid, IID_IXMLDOMNode)) {
            WatchNode(static_cast<IXMLDOMNode*>(*object));
        } else {
            WatchUnknown(static_cast<IUnknown*>(*object));
        }
    }
    return result;
}

void WatchUnknown(IUnknown* object) {
    const Table table = TableOf(object);
    Put(table, SlotOf(&IUnknownVtbl::QueryInterface), reinterpret_cast<void*>(&WatchedQueryInterface));
    Put(table, SlotOf(&IUnknownVtbl::AddRef), reinterpret_cast<void*>(&WatchedAddRef));
    Put(table, SlotOf(&IUnknownVtbl::Release), reinterpret_cast<void*>(&WatchedRelease));
}

// The library makes and reads texts; a request to read or write a file or an address is one of
// support/request_watch.h.
HRESULT STDMETHODCALLTYPE WatchedLoad(IXMLDOMDocument* self, VARIANT source, VARIANT_BOOL* done) {
    if (IsFromLibrary(__builtin_return_address(0))) {
        support::RequestsOfLibrary().kinds.insert("IXMLDOMDocument::load");
    }
    const auto original = Originals().at({TableOf(self), SlotOf(&IXMLDOMDocumentVtbl::load)});
    return reinterpret_cast<decltype(&WatchedLoad)>(original)(self, source, done);
}

HRESULT STDMETHODCALLTYPE WatchedSave(IXMLDOMDocument* self, VARIANT destination) {
    if (IsFromLibrary(__builtin_return_address(0))) {
        support::RequestsOfLibrary().kinds.insert("IXMLDOMDocument::save");
    }
    const auto original = Originals().at({TableOf(self), SlotOf(&IXMLDOMDocumentVtbl::save)});
    return reinterpret_cast<decltype(&WatchedSave)>(original)(self, destination);
}

void WatchNode(IXMLDOMNode* node) {
    WatchUnknown(reinterpret_cast<IUnknown*>(node));
    Put<&IXMLDOMNodeVtbl::get_childNodes>(node);
    Put<&IXMLDOMNodeVtbl::appendChild>(node);
    Put<&IXMLDOMNodeVtbl::get_ownerDocument>(node);
    Put<&IXMLDOMNodeVtbl::put_text>(node);
    Put<&IXMLDOMNodeVtbl::get_xml>(node);
}

void WatchList(IXMLDOMNodeList* list) {
    WatchUnknown(reinterpret_cast<IUnknown*>(list));
    Put<&IXMLDOMNodeListVtbl::get_item>(list);
}

void WatchDocumentInterface(IXMLDOMDocument* document) {
    WatchNode(reinterpret_cast<IXMLDOMNode*>(document));
    Put<&IXMLDOMDocumentVtbl::get_documentElement>(document);
    Put<&IXMLDOMDocumentVtbl::createNode>(document);
    Put<&IXMLDOMDocumentVtbl::loadXML>(document);
    const Table table = TableOf(document);
    Put(table, SlotOf(&IXMLDOMDocumentVtbl::load), reinterpret_cast<void*>(&WatchedLoad));
    Put(table, SlotOf(&IXMLDOMDocumentVtbl::save), reinterpret_cast<void*>(&WatchedSave));
}

}  // namespace

DomWatch& Dom() {
    return watch;
}

void WatchDocumentsOf(HMODULE module) {
    const auto* const base = reinterpret_cast<const unsigned char*>(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    module_begin = reinterpret_cast<std::uintptr_t>(base);
    module_end = module_begin + headers->OptionalHeader.SizeOfImage;
}

void WatchDocument(REFCLSID clsid, IUnknown* object) {
    constexpr CLSID kDocument = {
        0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
    if (IsEqualCLSID(clsid, kDocument) && object != nullptr) {
        ++watch.references;
        WatchUnknown(object);
    }
}

}  // namespace faults
