// cli/facts/facts_json.cpp - the facts about a model as JSON
#include "cli/facts/facts.h"
#include "cli/facts/warnings.h"

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

static Json jsonOf(const float (&values)[3])
{
    return Json::array({ values[0], values[1], values[2] });
}

static Json textureJson(const FoundTexture& texture, const char* name)
{
    if (!*name)
        return nullptr;
    if (texture.path.empty())
        return { { "name", name }, { "found", false } };
    return { { "name", name }, { "found", true }, { "file", texture.path }, { "bytes", texture.sizeBytes } };
}

static Json placeJson(int64_t byte, int64_t line)
{
    Json place = Json::object();
    if (line > 0)
        place["line"] = line;
    else if (byte >= 0)
        place["byte"] = byte;
    return place;
}

static Json warningsJson(const Report& report)
{
    Json warnings = Json::array();
    for (int i = 0; i < reportKindCount; ++i)
    {
        auto kind = static_cast<ReportKind>(i);
        const ReportEntry& entry = report.entries[i];
        if (entry.count == 0)
            continue;
        Json warning = { { "kind", reportKey(kind) }, { "count", entry.count }, { "text", warningText(report, kind) } };
        warning.update(placeJson(entry.firstByte, entry.firstLine));
        if (report.namedKind == kind && report.nameCount > 0)
        {
            Json names = Json::array();
            for (int32_t n = 0; n < report.nameCount; ++n)
                names.push_back({ { "name", report.names[n].name }, { "count", report.names[n].count } });
            warning["names"] = names;
        }
        warnings.push_back(warning);
    }
    return warnings;
}

// The counts of a group or a material, beside its name.
static Json countsJson(const char* name, const FaceCounts& counts)
{
    return { { "name", name },
             { "faces", allOf(counts) },
             { "triangles", counts.triangles },
             { "quads", counts.quads },
             { "lineRecords", counts.lineRecords } };
}

static Json materialJson(const LoadedModel& model, int32_t m, const Facts& facts)
{
    const Mesh* mesh = model.mesh;
    const Material& material = mesh->materials[m];
    Json json = countsJson(mesh->materialNames[m], facts.materials[static_cast<size_t>(m)]);
    json.update({
        { "ambient", jsonOf(material.ambient) },
        { "diffuse", jsonOf(material.diffuse) },
        { "specular", jsonOf(material.specular) },
        { "ambientLevel", material.ambientLevel },
        { "diffuseLevel", material.diffuseLevel },
        { "specularLevel", material.specularLevel },
        { "shininess", material.shininess },
        { "transparency", material.transparency },
        { "texture", textureJson(model.textures.textures[static_cast<size_t>(m)], mesh->textureNames[m]) },
        { "opacity", textureJson(model.textures.opacities[static_cast<size_t>(m)], mesh->opacityNames[m]) },
    });
    return json;
}

static Json objectOf(const std::string& path, const LoadedModel& model, const Facts& facts)
{
    const Mesh* mesh = model.mesh;
    const SurfaceMeasures& surface = facts.statistics.surface;
    Json groups = Json::array();
    for (int32_t g = 0; g < mesh->groupCount; ++g)
        groups.push_back(countsJson(mesh->groupNames[g], facts.groups[static_cast<size_t>(g)]));
    Json materials = Json::array();
    for (int32_t m = 0; m < mesh->materialCount; ++m)
        materials.push_back(materialJson(model, m, facts));
    return {
        { "file", path },
        { "name", mesh->name },
        { "vertices", mesh->vertexCount },
        { "uvs", facts.uvs },
        { "lines", mesh->lineCount },
        { "faces", mesh->liveFaceCount },
        { "faceSlots", mesh->faceCount },
        { "triangles", facts.all.triangles },
        { "quads", facts.all.quads },
        { "lineRecords", facts.all.lineRecords },
        { "hidden", facts.hidden },
        { "bounds", { { "min", jsonOf(mesh->boundsMin) }, { "max", jsonOf(mesh->boundsMax) } } },
        { "centre", jsonOf(mesh->centre) },
        { "radius", mesh->radius },
        { "openEdges", facts.statistics.openEdges },
        { "nonManifoldEdges", facts.statistics.nonManifoldEdges },
        { "flippedEdges", facts.statistics.flippedEdges },
        { "degenerateFaces", facts.statistics.degenerateFaces },
        { "duplicateFaces", surface.duplicateFaces },
        { "duplicateVertices", facts.statistics.duplicateVertices },
        { "pieces", surface.pieces },
        { "area", surface.area },
        { "closed", facts.statistics.closed },
        { "volume", enclosesVolume(facts.statistics) ? Json(surface.volume) : Json() },
        { "groups", groups },
        { "materials", materials },
        { "warnings", warningsJson(model.report) },
    };
}

static std::string textOf(const Json& json, bool inOneLine)
{
    return json.dump(inOneLine ? -1 : 2, ' ', false, Json::error_handler_t::replace);
}

std::string factsAsJson(const std::string& path, const LoadedModel& model, const Facts& facts, bool inOneLine)
{
    return textOf(objectOf(path, model, facts), inOneLine);
}

std::string errorAsJson(const std::string& path, const std::string& error, bool inOneLine)
{
    return textOf({ { "file", path }, { "error", error } }, inOneLine);
}
