#include "host/openraster_stack.h"

#include <algorithm>
#include <array>
#include <bit>

#include "host/flatten.h"
#include "host/openraster.h"
#include "host/text_encoding.h"

namespace imgbasic::host {
namespace {

struct Operation {
    CompositionKind kind;
    const char* name;
};

constexpr Operation kOperations[] = {
    {CompositionKind::Normal, "svg:src-over"},
    {CompositionKind::NormalAlpha, "svg:src-over"},
    {CompositionKind::Additive, "svg:plus"},
    {CompositionKind::Multiply, "svg:multiply"},
    {CompositionKind::Screen, "svg:screen"},
    {CompositionKind::Overlay, "svg:overlay"},
    {CompositionKind::Darken, "svg:darken"},
    {CompositionKind::Lighten, "svg:lighten"},
    {CompositionKind::ColorDodge, "svg:color-dodge"},
    {CompositionKind::ColorBurn, "svg:color-burn"},
    {CompositionKind::HardLight, "svg:hard-light"},
    {CompositionKind::SoftLight, "svg:soft-light"},
    {CompositionKind::Difference, "svg:difference"},
    {CompositionKind::Hue, "svg:hue"},
    {CompositionKind::Saturation, "svg:saturation"},
    {CompositionKind::Color, "svg:color"},
    {CompositionKind::Luminosity, "svg:luminosity"},
    {CompositionKind::DestinationIn, "svg:dst-in"},
    {CompositionKind::DestinationOut, "svg:dst-out"},
    {CompositionKind::SourceAtop, "svg:src-atop"},
    {CompositionKind::DestinationAtop, "svg:dst-atop"},
};

/// `name` as XML can hold it: what is no UTF-8, and most control characters, become U+FFFD.
std::string XmlText(const std::string& name) {
    std::string text;
    for (const char c : ValidUtf8(name)) {
        const bool forbidden = static_cast<unsigned char>(c) < 0x20 && !std::strchr("\t\n\r", c);
        text += forbidden ? "\xEF\xBF\xBD" : std::string(1, c);
    }
    return text;
}

/// The percentage of an opacity of 0 to 1. A whole one comes back from its text as itself.
double PercentOf(double opacity) {
    const double percent = std::clamp(opacity, 0.0, 1.0) * 100;
    const double whole = std::round(percent);
    return std::abs(percent - whole) < 1e-9 ? whole : percent;
}

std::string OpacityText(double percent) {
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), percent / 100);
    return {text.data(), end};
}

std::vector<std::string> CutLayers(const std::vector<Item>& items) {
    std::vector<std::string> phrases;
    for (const Item& item : items) {
        if (const auto* folder = std::get_if<Folder>(&item)) {
            std::ranges::move(CutLayers(folder->items), std::back_inserter(phrases));
            continue;
        }
        const auto& layer = std::get<Layer>(item);
        if (layer.origin && layer.origin->holdsOutside) {
            phrases.push_back("the layer \"" + layer.name +
                              "\" goes on outside the image, where nothing is scaled");
        }
    }
    return phrases;
}

}  // namespace

std::string CompositeOperation(const LayerAttributes& member) {
    const auto* const known = std::ranges::find(kOperations, member.kind, &Operation::kind);
    return known != std::end(kOperations) ? known->name : member.otherKind;
}

std::vector<std::string> LossesOf(const Document& document, bool resizes) {
    std::vector<std::string> losses = NotDrawn(document);
    for (std::string& phrase : losses) {
        phrase += ", which cannot be drawn and would look normal";
    }
    if (resizes) {
        std::ranges::move(CutLayers(document.items), std::back_inserter(losses));
    }
    return losses;
}

bool IsElement(pugi::xml_node node, std::string_view name) {
    return node.type() == pugi::node_element && node.name() == name;
}

std::optional<LayerAttributes> AttributesIn(pugi::xml_node node) {
    const std::optional<double> opacity = NumberOf(node.attribute("opacity"), 1.0);
    if (!opacity) {
        return std::nullopt;
    }
    LayerAttributes member{.name = XmlText(node.attribute("name").value()),
                           .opacity = PercentOf(*opacity)};
    member.visible = std::string_view(node.attribute("visibility").value()) != "hidden";
    member.clip = std::string_view(node.attribute("alpha-preserve").value()) == "true";
    const std::string_view operation = node.attribute("composite-op").as_string("svg:src-over");
    const auto* const known = std::ranges::find(
        kOperations, operation, [](const Operation& row) { return std::string_view(row.name); });
    if (known != std::end(kOperations)) {
        member.kind = known->kind;
    } else {
        member.kind = CompositionKind::Other;
        member.otherKind = operation;
    }
    return member;
}

bool IsIsolated(pugi::xml_node stack) {
    return std::string_view(stack.attribute("isolation").value()) == "isolate";
}

void StoreAttribute(pugi::xml_node node, const char* name, const std::string& value) {
    pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) {
        attribute = node.append_attribute(name);
    } else if (attribute.value() == value) {
        return;
    }
    attribute = value.c_str();
}

void StoreAttributes(pugi::xml_node node, bool isNew, const LayerAttributes& member) {
    const LayerAttributes had = AttributesIn(node).value_or(LayerAttributes{});
    const std::string name = XmlText(member.name);
    if (isNew || had.name != name) {
        StoreAttribute(node, "name", name);
    }
    if (isNew || had.opacity != member.opacity) {
        StoreAttribute(node, "opacity", OpacityText(std::clamp(member.opacity, 0.0, 100.0)));
    }
    if (isNew || had.visible != member.visible) {
        StoreAttribute(node, "visibility", member.visible ? "visible" : "hidden");
    }
    if (isNew || CompositeOperation(had) != CompositeOperation(member)) {
        StoreAttribute(node, "composite-op", CompositeOperation(member));
    }
    if (member.clip) {
        StoreAttribute(node, "alpha-preserve", "true");
    } else if (had.clip) {
        node.remove_attribute("alpha-preserve");
    }
}

uint64_t Fingerprint(const std::vector<RGBA16>& pixels) {
    // Every step maps different states or different pixels to different states. Four chains of
    // them keep the multiplier busy.
    std::array<uint64_t, 4> chains{1, 2, 3, 4};
    const auto step = [](uint64_t state, uint64_t value) {
        return (std::rotl(state, 29) ^ value) * 0x9E3779B97F4A7C15;
    };
    for (size_t i = 0; i < pixels.size(); ++i) {
        chains[i % 4] = step(chains[i % 4], std::bit_cast<uint64_t>(pixels[i]));
    }
    uint64_t all = pixels.size();
    for (const uint64_t chain : chains) {
        all = step(all, chain);
    }
    return all;
}

}  // namespace imgbasic::host
