#include "doors/lv2_bundle/description.h"

#include "base/fixed_text.h"
#include "base/product_names.h"
#include "doors/lv2/ports.h"
#include "doors/lv2_bundle/control_ports.h"
#include "doors/lv2_bundle/turtle.h"
#include "parameters/host_panel.h"

#include <cstdint>
#include <ostream>
#include <sstream>
#include <string_view>

namespace lv2_bundle {

using namespace parameters;

namespace {

// Even numbers are releases. To be raised whenever a port is added or changes what it means.
constexpr char kVersion[] = "    lv2:minorVersion 2 ;\n    lv2:microVersion 0 ;\n";

constexpr char kPrefixes[] = "@prefix doap: <http://usefulinc.com/ns/doap#> .\n"
                             "@prefix foaf: <http://xmlns.com/foaf/0.1/> .\n"
                             "@prefix log: <http://lv2plug.in/ns/ext/log#> .\n"
                             "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n"
                             "@prefix opts: <http://lv2plug.in/ns/ext/options#> .\n"
                             "@prefix pg: <http://lv2plug.in/ns/ext/port-groups#> .\n"
                             "@prefix pset: <http://lv2plug.in/ns/ext/presets#> .\n"
                             "@prefix rdf: <http://www.w3.org/1999/02/22-rdf-syntax-ns#> .\n"
                             "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n"
                             "@prefix ui: <http://lv2plug.in/ns/extensions/ui#> .\n"
                             "@prefix urid: <http://lv2plug.in/ns/ext/urid#> .\n";

/// The URI of the plug-in, or of something that belongs to it.
struct Uri {
    std::string_view part = {};
};

constexpr Uri kWindow = {"window"};

std::ostream& operator<<(std::ostream& out, const Uri& uri) {
    return out << '<' << lv2_door::kPluginUri << (uri.part.empty() ? "" : "#") << uri.part << '>';
}

/// "007" for the seventh: hosts list presets by their labels.
std::string numberText(std::size_t index) {
    std::string number = std::to_string(index + 1);
    return number.insert(0, 3 - number.size(), '0');
}

/// What the manifest and the file of values both say of a preset; its statement goes on.
void writePresetHead(std::ostream& out, Programs programs, std::size_t index) {
    const std::string number = numberText(index);
    char name[presets::kProgramNameLength + 1];
    base::copyText(name, programs[index].name, presets::kProgramNameLength);
    out << '\n'
        << Uri{std::string("preset-").append(number)} << "\n"
        << "    a pset:Preset ;\n"
        << "    lv2:appliesTo " << Uri{} << " ;\n"
        << "    rdfs:label " << quoted(std::string(number).append(" ").append(name)) << " ;\n";
}

void writeGroup(std::ostream& out, std::string_view kinds, std::string_view symbol, std::string_view name) {
    out << '\n'
        << Uri{symbol} << '\n'
        << "    a " << kinds << " ;\n"
        << "    lv2:symbol " << quoted(symbol) << " ;\n"
        << "    lv2:name " << quoted(name) << " ;\n"
        << "    rdfs:label " << quoted(name) << " .\n";
}

/// What every port has.
struct PortHead {
    std::string_view kinds;
    std::uint32_t index;
    std::string_view symbol;
    std::string_view name;
    std::string_view shortName;
    std::string_view group;
};

void writePortHead(std::ostream& out, const PortHead& port) {
    out << "        a " << port.kinds << " ;\n"
        << "        lv2:index " << port.index << " ;\n"
        << "        lv2:symbol " << quoted(port.symbol) << " ;\n"
        << "        lv2:name " << quoted(port.name) << " ;\n"
        << "        lv2:shortName " << quoted(port.shortName) << " ;\n"
        << "        pg:group " << Uri{port.group} << " ;\n";
}

void writeAudioPort(std::ostream& out, const PortHead& port, std::string_view side) {
    writePortHead(out, port);
    out << "        lv2:designation " << side << '\n';
}

void writeScalePoints(std::ostream& out, std::span<const ScalePoint> points) {
    out << "        lv2:scalePoint";
    for (const ScalePoint& point : points)
        out << (&point == points.data() ? "" : " ,") << "\n            [ rdfs:label " << quoted(point.label)
            << " ; rdf:value " << decimalText(point.value) << " ]";
    out << '\n';
}

void writeControlPort(std::ostream& out, std::int32_t id) {
    const PanelEntry& port = panelEntry(id);
    writePortHead(out, {"lv2:InputPort , lv2:ControlPort", lv2_door::controlPort(id), symbolOf(port.name),
                        port.name, shortNameOf(id), port.group.symbol});
    out << "        lv2:default " << decimalText(parameter(id).defaultValue) << " ;\n"
        << "        lv2:minimum 0.0 ;\n"
        << "        lv2:maximum 1.0 ;\n";
    if (id == kSet)
        out << "        lv2:portProperty lv2:enumeration ;\n";
    writeScalePoints(out, scalePointsOf(id));
}

/// What the window needs of a host, and what it uses where a host has it.
void writeWindow(std::ostream& out) {
    out << '\n'
        << kWindow << '\n'
        << "    a ui:X11UI ;\n"
        << "    lv2:extensionData ui:idleInterface ;\n"
        << "    lv2:requiredFeature ui:idleInterface , ui:parent ;\n"
        << "    lv2:optionalFeature ui:resize , ui:touch , opts:options , urid:map , log:log .\n";
}

constexpr char kNextPort[] = "    ] , [\n";

void writePorts(std::ostream& out) {
    constexpr std::string_view input = "lv2:InputPort , lv2:AudioPort";
    constexpr std::string_view output = "lv2:OutputPort , lv2:AudioPort";
    constexpr std::string_view left = "pg:left", right = "pg:right";
    using namespace lv2_door;
    out << "    lv2:port [\n";
    writeAudioPort(out, {input, kInputLeft, "in_left", "Input left", "Input left", "audio_in"}, left);
    out << kNextPort;
    writeAudioPort(out, {input, kInputRight, "in_right", "Input right", "Input right", "audio_in"}, right);
    out << kNextPort;
    writeAudioPort(out, {output, kOutputLeft, "out_left", "Output left", "Output left", "audio_out"}, left);
    out << kNextPort;
    writeAudioPort(out, {output, kOutputRight, "out_right", "Output right", "Output right", "audio_out"},
                   right);
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id) {
        out << kNextPort;
        writeControlPort(out, id);
    }
    out << "    ] .\n";
}

} // namespace

std::string manifest(const Modules& modules, Programs programs) {
    std::ostringstream out;
    out << kPrefixes << '\n'
        << Uri{} << '\n'
        << "    a lv2:Plugin ;\n"
        << "    lv2:binary <" << modules.plugin << "> ;\n"
        << "    rdfs:seeAlso <" << kPluginFile << "> .\n\n"
        << kWindow << '\n'
        << "    a ui:X11UI ;\n"
        << "    lv2:binary <" << modules.window << "> ;\n"
        << "    rdfs:seeAlso <" << kPluginFile << "> .\n";
    for (std::size_t index = 0; index < programs.size(); ++index) {
        writePresetHead(out, programs, index);
        out << "    rdfs:seeAlso <" << kPresetsFile << "> .\n";
    }
    return out.str();
}

std::string plugin() {
    std::ostringstream out;
    out << kPrefixes;
    for (const Group& group : kGroups)
        writeGroup(out, "pg:Group", group.symbol, group.name);
    writeGroup(out, "pg:InputGroup , pg:StereoGroup", "audio_in", "Audio in");
    writeGroup(out, "pg:OutputGroup , pg:StereoGroup", "audio_out", "Audio out");
    out << '\n'
        << Uri{} << '\n'
        << "    a lv2:DelayPlugin , lv2:Plugin , doap:Project ;\n"
        << "    doap:name " << quoted(base::kProductName) << " ;\n"
        << "    doap:license <http://opensource.org/licenses/MIT> ;\n"
        << "    doap:maintainer [ a foaf:Organization ; foaf:name " << quoted(base::kVendorName) << " ] ;\n"
        << kVersion << "    lv2:optionalFeature lv2:hardRTCapable , log:log , urid:map ;\n"
        << "    pg:mainInput " << Uri{"audio_in"} << " ;\n"
        << "    pg:mainOutput " << Uri{"audio_out"} << " ;\n"
        << "    ui:ui " << kWindow << " ;\n";
    writePorts(out);
    writeWindow(out);
    return out.str();
}

std::string presetValues(Programs programs) {
    std::ostringstream out;
    out << kPrefixes;
    for (std::size_t index = 0; index < programs.size(); ++index) {
        writePresetHead(out, programs, index);
        out << "    lv2:port";
        for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
            out << (id == 0 ? "" : " ,") << "\n        [ lv2:symbol " << quoted(symbolOf(panelEntry(id).name))
                << " ; pset:value " << decimalText(programs[index].values[id]) << " ]";
        out << " .\n";
    }
    return out.str();
}

} // namespace lv2_bundle
