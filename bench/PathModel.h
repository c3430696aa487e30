// 5,050 registered names over 36,000 live doubles: 50 modules, each with 8 materials of 9 strengths of 10 cohesions.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace bench {

struct Strength {
    std::array<double, 10> cohesion;
};
struct StrengthenedMaterial {
    std::array<Strength, 9> strengths;
};
struct MaterialModule {
    std::vector<StrengthenedMaterial> materials = std::vector<StrengthenedMaterial>(8);
};
struct PathModel {
    std::array<MaterialModule, 50> modules;
};

/// Registers the model's names in the current registry. With `persisted` off no document is concerned, so that only the
/// tables are measured.
void RegisterPathModel(PathModel& model, bool persisted);

/// The same without the array: 5,000 registered names over 4,500 live doubles.
struct FlatPathModel {
    std::array<StrengthenedMaterial, 50> modules;
};

/// Registers the model's names in the current registry. No document is concerned.
void RegisterFlatPathModel(FlatPathModel& model);

/// One leaf under its whole name.
struct PathLeaf {
    std::string name; // Module07.Materials[3].Strength2.Cohesion5, Module07.Strength2.Cohesion5
    double* value;
};

/// Gives each leaf a value of its own: its place in the model and a quarter. Returns 16,384 of them in a random order
/// that is the same in every run.
std::vector<PathLeaf> ShuffledLeaves(PathModel& model);
/// The same for all 4,500.
std::vector<PathLeaf> ShuffledLeaves(FlatPathModel& model);

} // namespace bench
