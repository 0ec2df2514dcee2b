// The bundle as hosts read it, through the library that most of them read it with. What a validator does not
// notice is looked at here: every index, name, symbol, default and range, and every value of every preset.
#include "desk/shared_library.h"
#include "doors/lv2/ports.h"
#include "presets/delay_program.h"

#include <lilv/lilv.h>
#include <lv2/log/log.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace parameters;

constexpr char kLv2[] = "http://lv2plug.in/ns/lv2core#";
constexpr char kGroups[] = "http://lv2plug.in/ns/ext/port-groups#";
constexpr char kPresets[] = "http://lv2plug.in/ns/ext/presets#";
constexpr char kLabels[] = "http://www.w3.org/2000/01/rdf-schema#label";

/// What a port has to be. Written down here once more: projects are kept by it.
struct ControlWords {
    const char* symbol;
    const char* name;
    const char* shortName;
    const char* group;
};
constexpr std::array<ControlWords, kNumLiveParameters> kControls = {{
    {"base_length", "Base length", "Bs Lgh 1", "Pattern"},
    {"echoes", "Echoes", "Taps #", "Pattern"},
    {"sweep_rate", "Sweep rate", "LFO Rt", "Motion"},
    {"stretch", "Stretch", "Stretch dly", "Pattern"},
    {"fade_swell", "Fade / Swell", "Amp Decay", "Pattern"},
    {"fade_curve", "Fade curve", "Curve", "Pattern"},
    {"feedback", "Feedback", "Feedback", "Output"},
    {"sweep_depth", "Sweep depth", "LFO Dp", "Motion"},
    {"how_echoes_move", "How echoes move", "Set", "Motion"},
    {"high_cut", "High cut", "Pre LP", "Input"},
    {"low_cut", "Low cut", "Pre HP", "Input"},
    {"input_pan", "Input pan", "Pre Pan", "Input"},
    {"input_gain", "Input gain", "Pre Gain", "Input"},
    {"stereo", "Stereo", "Stereo", "Output"},
    {"mix", "Mix", "Dry Wet", "Output"},
    {"echo_pan", "Echo pan", "Out Pan", "Output"},
    {"output_gain", "Output gain", "Out Gain", "Output"},
}};

template <class T, void (*release)(T*)>
struct Release {
    void operator()(T* object) const { release(object); }
};
template <class T, void (*release)(T*)>
using Owner = std::unique_ptr<T, Release<T, release>>;
using World = Owner<LilvWorld, lilv_world_free>;
using Node = Owner<LilvNode, lilv_node_free>;
using Nodes = Owner<LilvNodes, lilv_nodes_free>;
using ScalePoints = Owner<LilvScalePoints, lilv_scale_points_free>;
using State = Owner<LilvState, lilv_state_free>;

std::string textOf(const LilvNode* node) {
    return node ? lilv_node_as_string(node) : "nothing";
}

std::uint32_t bitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

/// The bundle, and what the format says of classes of plug-ins; no other bundle of this machine.
class Bundle : public testing::Test {
  protected:
    Bundle() {
        for (const char* const folder : {LV2_DESCRIPTIONS "/core.lv2/", QUILLON_LV2_BUNDLE "/"}) {
            const Node path(lilv_new_file_uri(world.get(), nullptr, folder));
            lilv_world_load_bundle(world.get(), path.get());
        }
        lilv_world_load_specifications(world.get());
        lilv_world_load_plugin_classes(world.get());
        const LilvPlugins* const all = lilv_world_get_all_plugins(world.get());
        plugin = lilv_plugins_get_by_uri(all, uri(lv2_door::kPluginUri).get());
    }
    void SetUp() override { ASSERT_TRUE(plugin); }

    Node uri(const std::string& text) const { return Node(lilv_new_uri(world.get(), text.c_str())); }
    const LilvPort* port(std::uint32_t index) const { return lilv_plugin_get_port_by_index(plugin, index); }
    const LilvPort* control(std::size_t id) const {
        return port(lv2_door::controlPort(static_cast<std::int32_t>(id)));
    }
    bool isA(const LilvPort* of, const char* kind) const {
        return lilv_port_is_a(plugin, of, uri(std::string(kLv2) + kind).get());
    }
    /// What a port has under a property of which it has just one.
    std::string property(const LilvPort* of, const std::string& name) const {
        const Nodes values(lilv_port_get_value(plugin, of, uri(name).get()));
        EXPECT_EQ(lilv_nodes_size(values.get()), 1u) << name;
        return textOf(lilv_nodes_get_first(values.get()));
    }
    std::string nameOf(const LilvPort* of) const {
        return textOf(Node(lilv_port_get_name(plugin, of)).get());
    }
    std::string symbolOf(const LilvPort* of) const { return textOf(lilv_port_get_symbol(plugin, of)); }
    /// The label of the group of a port.
    std::string groupOf(const LilvPort* of) const {
        const Node group = uri(property(of, std::string(kGroups) + "group"));
        return textOf(Node(lilv_world_get(world.get(), group.get(), uri(kLabels).get(), nullptr)).get());
    }

    World world{lilv_world_new()};
    const LilvPlugin* plugin = nullptr;
};

TEST_F(Bundle, HasOneDelayOfTheProductsName) {
    EXPECT_EQ(lilv_plugins_size(lilv_world_get_all_plugins(world.get())), 1u);
    EXPECT_TRUE(lilv_plugin_verify(plugin));
    EXPECT_EQ(textOf(Node(lilv_plugin_get_name(plugin)).get()), "Quillon Multitap Delay");
    EXPECT_EQ(textOf(Node(lilv_plugin_get_author_name(plugin)).get()), "Quillon Software");
    EXPECT_EQ(textOf(lilv_plugin_class_get_uri(lilv_plugin_get_class(plugin))),
              kLv2 + std::string("DelayPlugin"));
    EXPECT_EQ(lilv_plugin_get_num_ports(plugin), lv2_door::kNumPorts);
    EXPECT_FALSE(lilv_plugin_has_latency(plugin));
}

TEST_F(Bundle, MayRunInARealTimeThreadAndInPlaceAndRequiresNothing) {
    EXPECT_TRUE(lilv_plugin_has_feature(plugin, uri(kLv2 + std::string("hardRTCapable")).get()));
    EXPECT_FALSE(lilv_plugin_has_feature(plugin, uri(kLv2 + std::string("inPlaceBroken")).get()));
    const Nodes required(lilv_plugin_get_required_features(plugin));
    EXPECT_EQ(lilv_nodes_size(required.get()), 0u);
}

TEST_F(Bundle, NamesAModuleThatHasThePlugin) {
    EXPECT_EQ(textOf(lilv_plugin_get_library_uri(plugin)),
              "file://" QUILLON_LV2_BUNDLE "/QuillonMultitapDelay.so");
    LilvInstance* const instance = lilv_plugin_instantiate(plugin, 44100.0, nullptr);
    ASSERT_TRUE(instance);
    EXPECT_STREQ(lilv_instance_get_uri(instance), lv2_door::kPluginUri);
    lilv_instance_free(instance);
}

/// The one window that the bundle has, as hosts look for it.
class WindowOfTheBundle : public Bundle {
  protected:
    void SetUp() override {
        Bundle::SetUp();
        windows.reset(lilv_plugin_get_uis(plugin));
        ASSERT_EQ(lilv_uis_size(windows.get()), 1u);
        window = lilv_uis_get(windows.get(), lilv_uis_begin(windows.get()));
    }
    /// The names under a property of it, behind the prefix that they all have.
    std::set<std::string> names(const std::string& property) const {
        std::set<std::string> found;
        const Nodes values(
            lilv_world_find_nodes(world.get(), lilv_ui_get_uri(window), uri(kLv2 + property).get(), nullptr));
        LILV_FOREACH(nodes, i, values.get())
        found.insert(textOf(lilv_nodes_get(values.get(), i)));
        return found;
    }

    struct Free {
        void operator()(LilvUIs* uis) const { lilv_uis_free(uis); }
    };
    std::unique_ptr<LilvUIs, Free> windows;
    const LilvUI* window = nullptr;
};

TEST_F(WindowOfTheBundle, IsOneOfX11InAModuleBesideTheOther) {
    EXPECT_EQ(textOf(lilv_ui_get_uri(window)), lv2_door::kWindowUri);
    EXPECT_TRUE(lilv_ui_is_a(window, uri(LV2_UI__X11UI).get()));
    EXPECT_EQ(textOf(lilv_ui_get_binary_uri(window)),
              "file://" QUILLON_LV2_BUNDLE "/QuillonMultitapDelayWindow.so");
    EXPECT_EQ(textOf(lilv_ui_get_bundle_uri(window)), "file://" QUILLON_LV2_BUNDLE "/");
}

TEST_F(WindowOfTheBundle, RequiresAParentAndIdleRoundsAndNothingElse) {
    EXPECT_EQ(names("requiredFeature"), (std::set<std::string>{LV2_UI__parent, LV2_UI__idleInterface}));
    EXPECT_EQ(names("extensionData"), (std::set<std::string>{LV2_UI__idleInterface}));
    EXPECT_EQ(names("optionalFeature"),
              (std::set<std::string>{LV2_UI__resize, LV2_UI__touch, LV2_OPTIONS__options, LV2_URID__map,
                                     LV2_LOG__log}));
}

TEST_F(WindowOfTheBundle, IsInTheModuleThatTheBundleNames) {
    const desk::SharedLibrary module(QUILLON_LV2_BUNDLE "/QuillonMultitapDelayWindow.so");
    const auto find = reinterpret_cast<LV2UI_DescriptorFunction>(module.symbol("lv2ui_descriptor"));
    ASSERT_TRUE(find);
    EXPECT_STREQ(find(0)->URI, lv2_door::kWindowUri);
}

TEST_F(Bundle, HasTwoAudioPortsOnEitherSide) {
    struct Expected {
        const char* symbol;
        const char* name;
        const char* kind;
        const char* group;
        const char* side;
    };
    const std::array<Expected, 4> expected = {
        {{"in_left", "Input left", "InputPort", "Audio in", "left"},
         {"in_right", "Input right", "InputPort", "Audio in", "right"},
         {"out_left", "Output left", "OutputPort", "Audio out", "left"},
         {"out_right", "Output right", "OutputPort", "Audio out", "right"}}};
    for (std::uint32_t index = 0; index < 4; ++index) {
        const LilvPort* const audio = port(index);
        EXPECT_TRUE(isA(audio, "AudioPort")) << index;
        EXPECT_TRUE(isA(audio, expected[index].kind)) << index;
        EXPECT_EQ(symbolOf(audio), expected[index].symbol);
        EXPECT_EQ(nameOf(audio), expected[index].name);
        EXPECT_EQ(groupOf(audio), expected[index].group);
        EXPECT_EQ(property(audio, std::string(kLv2) + "designation"),
                  kGroups + std::string(expected[index].side));
    }
}

TEST_F(Bundle, HasAControlForEachLiveParameterById) {
    for (std::size_t id = 0; id < kControls.size(); ++id) {
        const LilvPort* const of = control(id);
        ASSERT_TRUE(of) << id;
        EXPECT_TRUE(isA(of, "InputPort") && isA(of, "ControlPort")) << id;
        EXPECT_EQ(lilv_port_get_index(plugin, of), 4 + id);
        EXPECT_EQ(symbolOf(of), kControls[id].symbol);
        EXPECT_EQ(nameOf(of), kControls[id].name);
        EXPECT_EQ(property(of, std::string(kLv2) + "shortName"), kControls[id].shortName);
        EXPECT_LT(std::strlen(kControls[id].shortName), 16u);
        EXPECT_EQ(groupOf(of), kControls[id].group);
    }
}

TEST_F(Bundle, TellsNoTwoPortsByTheSameNameOrSymbol) {
    std::set<std::string> names, symbols;
    for (std::uint32_t index = 0; index < lv2_door::kNumPorts; ++index) {
        names.insert(nameOf(port(index)));
        symbols.insert(symbolOf(port(index)));
    }
    EXPECT_EQ(names.size(), lv2_door::kNumPorts);
    EXPECT_EQ(symbols.size(), lv2_door::kNumPorts);
}

TEST_F(Bundle, HasTheTablesDefaultsFromZeroToOne) {
    for (std::size_t id = 0; id < kControls.size(); ++id) {
        LilvNode *initial = nullptr, *lowest = nullptr, *highest = nullptr;
        lilv_port_get_range(plugin, control(id), &initial, &lowest, &highest);
        const Node owners[] = {Node(initial), Node(lowest), Node(highest)};
        ASSERT_TRUE(initial && lowest && highest) << id;
        EXPECT_EQ(bitsOf(lilv_node_as_float(initial)),
                  bitsOf(parameter(static_cast<std::int32_t>(id)).defaultValue))
            << id;
        EXPECT_EQ(bitsOf(lilv_node_as_float(lowest)), bitsOf(0.0f)) << id;
        EXPECT_EQ(bitsOf(lilv_node_as_float(highest)), bitsOf(1.0f)) << id;
    }
}

/// The labels of a port's scale points by their values.
std::map<float, std::string> scalePointsOf(const LilvPlugin* plugin, const LilvPort* of) {
    std::map<float, std::string> found;
    const ScalePoints points(lilv_port_get_scale_points(plugin, of));
    LILV_FOREACH(scale_points, i, points.get()) {
        const LilvScalePoint* const point = lilv_scale_points_get(points.get(), i);
        found[lilv_node_as_float(lilv_scale_point_get_value(point))] =
            textOf(lilv_scale_point_get_label(point));
    }
    EXPECT_EQ(found.size(), lilv_scale_points_size(points.get())) << "two points of one value";
    return found;
}

TEST_F(Bundle, HasThreeWaysForTheEchoesToMoveAndNoneBetween) {
    const std::map<float, std::string> expected = {{0.0f, "Jump"}, {0.5f, "Glide"}, {1.0f, "Fine"}};
    EXPECT_EQ(scalePointsOf(plugin, control(kSet)), expected);
    const Node enumeration = uri(std::string(kLv2) + "enumeration");
    for (std::size_t id = 0; id < kControls.size(); ++id)
        EXPECT_EQ(lilv_port_has_property(plugin, control(id), enumeration.get()), id == kSet) << id;
}

TEST_F(Bundle, SaysWhatTheWindowDisplaysAlongEachControl) {
    for (std::size_t id = 0; id < kControls.size(); ++id) {
        if (id == kSet)
            continue;
        std::map<float, std::string> expected;
        for (const float value : {0.0f, 0.25f, 0.5f, 0.75f, 1.0f}) {
            char text[kDisplayTextSize];
            parameter(static_cast<std::int32_t>(id)).display(value, text);
            expected[value] = text;
        }
        EXPECT_EQ(scalePointsOf(plugin, control(id)), expected) << id;
    }
    EXPECT_EQ(scalePointsOf(plugin, control(kStretch)).at(0.5f), "0 %");
}

/// The delivered bank, read by its bytes.
std::vector<presets::DelayProgram> factoryPrograms() {
    std::vector<presets::DelayProgram> programs(128);
    std::FILE* const file = std::fopen(QUILLON_LV2_BUNDLE "/default.fxb", "rb");
    EXPECT_TRUE(file);
    if (!file)
        return programs;
    constexpr long header = 160;
    EXPECT_EQ(std::fseek(file, header, SEEK_SET), 0);
    EXPECT_EQ(std::fread(static_cast<void*>(programs.data()), sizeof(presets::DelayProgram), 128, file),
              128u);
    std::fclose(file);
    return programs;
}

struct Preset {
    std::string uri;
    std::string label;
};

/// Takes the values of a preset as a host does.
struct Values {
    static void take(const char* symbol, void* self, const void* value, std::uint32_t size, std::uint32_t) {
        float number = -1.0f;
        EXPECT_EQ(size, sizeof number) << symbol;
        std::memcpy(&number, value, std::min<std::size_t>(size, sizeof number));
        static_cast<Values*>(self)->bySymbol[symbol] = number;
    }
    std::map<std::string, float> bySymbol;
};

/// Numbers for the names of types, as a host gives them.
struct Numbers {
    static LV2_URID number(LV2_URID_Map_Handle self, const char* uri) {
        auto& names = static_cast<Numbers*>(self)->names;
        return names.try_emplace(uri, static_cast<LV2_URID>(names.size() + 1)).first->second;
    }
    std::map<std::string, LV2_URID> names;
    LV2_URID_Map map = {this, number};
};

class PresetsOfTheBundle : public Bundle {
  protected:
    std::vector<Preset> presets() {
        std::vector<Preset> found;
        const Nodes related(lilv_plugin_get_related(plugin, uri(std::string(kPresets) + "Preset").get()));
        LILV_FOREACH(nodes, i, related.get()) {
            const LilvNode* const preset = lilv_nodes_get(related.get(), i);
            found.push_back({textOf(preset), labelOf(preset)});
        }
        std::ranges::sort(found, {}, &Preset::label);
        return found;
    }
    std::string labelOf(const LilvNode* preset) {
        return textOf(Node(lilv_world_get(world.get(), preset, uri(kLabels).get(), nullptr)).get());
    }
    /// By the symbols of the ports.
    std::map<std::string, float> valuesOf(const Preset& preset) {
        Numbers numbers;
        const Node subject = uri(preset.uri);
        EXPECT_GE(lilv_world_load_resource(world.get(), subject.get()), 0);
        const State state(lilv_state_new_from_world(world.get(), &numbers.map, subject.get()));
        EXPECT_TRUE(state);
        Values values;
        if (state)
            lilv_state_emit_port_values(state.get(), Values::take, &values);
        return values.bySymbol;
    }
};

TEST_F(PresetsOfTheBundle, AreTheFactoryProgramsNumberedInTheirOrder) {
    const std::vector<Preset> found = presets();
    const std::vector<presets::DelayProgram> programs = factoryPrograms();
    ASSERT_EQ(found.size(), programs.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        char number[4];
        std::snprintf(number, sizeof number, "%03u", static_cast<unsigned>(i + 1) % 1000);
        const std::string name(programs[i].name, strnlen(programs[i].name, sizeof programs[i].name));
        EXPECT_EQ(found[i].label, std::string(number) + " " + name);
        EXPECT_EQ(found[i].uri, std::string(lv2_door::kPluginUri) + "#preset-" + number);
    }
}

TEST_F(PresetsOfTheBundle, HaveEveryValueOfTheFactoryProgramsBitForBit) {
    const std::vector<Preset> found = presets();
    const std::vector<presets::DelayProgram> programs = factoryPrograms();
    ASSERT_EQ(found.size(), programs.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        const std::map<std::string, float> values = valuesOf(found[i]);
        EXPECT_EQ(values.size(), kControls.size()) << found[i].label;
        for (std::size_t id = 0; id < kControls.size(); ++id) {
            ASSERT_TRUE(values.contains(kControls[id].symbol)) << found[i].label;
            EXPECT_EQ(bitsOf(values.at(kControls[id].symbol)), bitsOf(programs[i].values[id]))
                << found[i].label << ", " << kControls[id].name;
        }
    }
}

} // namespace
