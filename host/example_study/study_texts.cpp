// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/example_study/study_texts.h"

#include "host/files/text_check.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace corvane::example_study
{

namespace
{

constexpr auto resolution = "8 mm isotropic, coarser than a real study so that the files are small";

QByteArray decimal(double value)
{
    return QByteArray::number(value, 'f', 2);
}

QJsonObject described(const char *text)
{
    return {{QStringLiteral("Description"), QString::fromLatin1(text)}};
}

} // namespace

QByteArray datasetDescription()
{
    const QJsonObject maker{
        {QStringLiteral("Name"), QStringLiteral("Corvane")},
        {QStringLiteral("Description"),
         QStringLiteral("Made by \"Corvane example --study\": no person was scanned. Files are "
                        "named and laid out as fMRIPrep leaves them.")}};
    const QJsonObject dataset{{QStringLiteral("Name"), QStringLiteral("Example study")},
                              {QStringLiteral("BIDSVersion"), QStringLiteral("1.8.0")},
                              {QStringLiteral("DatasetType"), QStringLiteral("derivative")},
                              {QStringLiteral("License"), QStringLiteral("CC0")},
                              {QStringLiteral("GeneratedBy"), QJsonArray{maker}}};
    return QJsonDocument(dataset).toJson();
}

QByteArray participantsTable(int count)
{
    QByteArray table = "participant_id\tgroup\tage\tsex\n";
    for (int number = 1; number <= count; ++number) {
        const Participant one = participant(number);
        table += one.label() + '\t' + groupNames[one.group] + '\t' + QByteArray::number(one.age) +
                 '\t' + one.sex + '\n';
    }
    return table;
}

QByteArray participantsJson()
{
    QJsonObject group = described("The group of the participant");
    group.insert(QStringLiteral("Levels"),
                 QJsonObject{{QStringLiteral("Control"), QStringLiteral("without a diagnosis")},
                             {QStringLiteral("Patient"), QStringLiteral("with a diagnosis")}});
    QJsonObject age = described("Age when the first session was recorded");
    age.insert(QStringLiteral("Units"), QStringLiteral("year"));
    QJsonObject sex = described("Sex of the participant");
    sex.insert(QStringLiteral("Levels"),
               QJsonObject{{QStringLiteral("F"), QStringLiteral("female")},
                           {QStringLiteral("M"), QStringLiteral("male")}});
    return QJsonDocument(QJsonObject{{QStringLiteral("group"), group},
                                     {QStringLiteral("age"), age},
                                     {QStringLiteral("sex"), sex}})
        .toJson();
}

QByteArray atlasTable()
{
    QByteArray table = "index\tname\tnetwork\themisphere\tx\ty\tz\n";
    for (int node = 0; node < nodeCount; ++node) {
        const Region &region = regionOf(node);
        const auto [x, y, z] = region.centre;
        table += QByteArray::number(node + 1) + '\t' + nodeName(node) + '\t' +
                 networkNames[region.network] + '\t' + (isRight(node) ? "R" : "L");
        for (const double place : {isRight(node) ? x : -x, y, z})
            table += '\t' + decimal(place);
        table += '\n';
    }
    return table;
}

QByteArray plantedEdgesTable()
{
    QByteArray table = "node_a\tnode_b\tcontrol\tpatient\n";
    for (const PlantedEdge &edge : plantedEdges())
        table += nodeName(edge.first) + '\t' + nodeName(edge.second) + '\t' +
                 decimal(edge.control) + '\t' + decimal(edge.patient) + '\n';
    return table;
}

QByteArray boldJson(Task task)
{
    const QJsonObject facts{
        {QStringLiteral("RepetitionTime"), repetitionTime},
        {QStringLiteral("TaskName"), QLatin1String(taskNames[task])},
        {QStringLiteral("Resolution"), QLatin1String(resolution)},
        {QStringLiteral("SkullStripped"), true},
        {QStringLiteral("SliceTimingCorrected"), true},
        {QStringLiteral("StartTime"), 0},
    };
    return QJsonDocument(facts).toJson();
}

QByteArray maskJson()
{
    return QJsonDocument(QJsonObject{{QStringLiteral("Type"), QStringLiteral("Brain")},
                                     {QStringLiteral("Resolution"), QLatin1String(resolution)}})
        .toJson();
}

QByteArray eventsTable(const Participant &participant)
{
    QByteArray table = "onset\tduration\ttrial_type\n";
    for (const TaskBlock &block : taskBlocks(participant))
        table += shortestDecimal(block.onset) + '\t' + shortestDecimal(block.duration) + '\t' +
                 QByteArray::number(block.load) + "back\n";
    return table;
}

QByteArray readme(int participants)
{
    return "An example study, made by a program: no person was scanned.\n\n" +
           QByteArray::number(participants) +
           R"text( participants in two groups, Control and Patient, two sessions, a run at rest and one of a task in
each, named and laid out as fMRIPrep leaves them. 160 volumes 2 s apart, voxels of 8 mm.

participants.tsv     group, age and sex
atlas/               19 regions in both hemispheres, in 7 networks, and their names
planted_edges.tsv    the pairs of regions whose correlation differs between the groups, with the
                     correlation that each group was made with; no other pair differs
sub-*/ses-*/func/    runs, masks, tables of confounds, events of the task

What is in the data
- Regions of one network correlate with about 0.5. Each participant's correlations differ a little
  from the group's, mostly alike in both sessions.
- Patients have lower correlations of the medial prefrontal cortex with the posterior cingulate and
  angular regions, and higher ones of the thalamus with the motor regions.
- Patients move more. Motion, drift, the blood of the whole brain, fluid and white matter change the
  signal, and the tables of confounds tell of them. Uncleaned, correlations depend on motion. The
  runs of sub-06 (session b, rest), sub-14 (both sessions, rest) and sub-20 (session a, nback) keep
  less than 240 s when volumes with motion are censored.
- In the task blocks of 26 s with letters to remember, none or two back, take turns. Frontoparietal,
  dorsal attention and salience regions respond, the first two also share a signal in the harder
  blocks, and the default mode network falls.
)text";
}

} // namespace corvane::example_study
