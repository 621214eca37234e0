#include <gtest/gtest.h>

#include "MibrelCore/Storage/TeskProjectArchive.h"
#include "MibrelCore/Storage/TeskSourceStore.h"
#include "MibrelMac/State/MibrelScriptedPanels.h"
#include "MibrelMac/State/MibrelSourcesState.h"
#include "MibrelMac/State/MibrelTranscriptRowEditing.h"
#include "MibrelMac/State/MibrelWorkspaceState.h"
#include "tests/support/TestSupport.h"

namespace mibrel {
namespace {

using testing::TemporaryDirectory;

class TranscriptEditingTest : public ::testing::Test {
protected:
    TranscriptEditingTest() {
        TeskProjectArchive::createEmpty(project, "Study", false);
        state.bind(project);
        testing::writeText(folder / "Interview.txt", "placeholder");
        state.importTranscript(folder / "Interview.txt");
        id = state.sources()[0].id;
        state.updateTranscript({{{"a", 10.0, 20.0, "one two three"},
                                 {"b", std::nullopt, std::nullopt, "untimed words"},
                                 {"c", 30.0, 30.0, "instant"},
                                 {"d", 31.0, std::nullopt, "open ended"}}},
                               id);
    }

    const std::vector<TranscriptSegment>& segments() const { return state.transcript(id).segments; }
    // What is on disk, to show each change was saved at once.
    std::vector<TranscriptSegment> saved() const { return TeskSourceStore::loadTranscript(id, project).segments; }

    TemporaryDirectory folder;
    std::filesystem::path project = folder / "Study.mvibrl";
    MibrelScriptedPanels panels;
    MibrelSourcesState state{panels};
    Uuid id;
};

TEST_F(TranscriptEditingTest, EditsKeepTheIdAndAnEmptiedSegmentGoes) {
    state.updateTranscriptSegmentText(id, "a", "  One, two, three.\n");
    EXPECT_EQ(segments()[0].id, "a");
    EXPECT_EQ(segments()[0].text, "One, two, three.");
    EXPECT_EQ(segments()[0].start, 10.0);
    state.updateTranscriptSegmentText(id, "b", " \n ");
    ASSERT_EQ(segments().size(), 3u);
    EXPECT_EQ(segments()[1].id, "c");
    EXPECT_EQ(saved(), segments());
    state.updateTranscriptSegmentText(id, "missing", "text");
    state.updateTranscriptSegmentText(Uuid::random(), "a", "text");
    EXPECT_EQ(saved(), segments());
}

TEST_F(TranscriptEditingTest, SplitsCutTimeInHalfAndGiveTheSecondHalfANewId) {
    state.splitTranscriptSegment(id, "a", "one", " two three ");
    ASSERT_EQ(segments().size(), 5u);
    EXPECT_EQ(segments()[0].id, "a");
    EXPECT_EQ(segments()[0].end, 15.0);
    EXPECT_EQ(segments()[1].start, 15.0);
    EXPECT_EQ(segments()[1].end, 20.0);
    EXPECT_EQ(segments()[1].text, "two three");
    EXPECT_EQ(segments()[1].id.size(), 36u);

    state.splitTranscriptSegment(id, "b", "untimed", "words");
    EXPECT_FALSE(segments()[2].start);
    EXPECT_FALSE(segments()[3].start);
    EXPECT_FALSE(segments()[3].end);

    state.splitTranscriptSegment(id, "c", "in", "stant");
    EXPECT_EQ(segments()[4].start, 30.0);
    EXPECT_EQ(segments()[5].start, 30.0);
    EXPECT_EQ(segments()[5].end, 30.0);

    const auto before = segments();
    state.splitTranscriptSegment(id, "d", " ", "");
    EXPECT_EQ(segments(), before);
    state.splitTranscriptSegment(id, "d", "", "only the second");
    EXPECT_EQ(segments().back().text, "only the second");
    EXPECT_EQ(segments().size(), before.size());
    EXPECT_EQ(saved(), segments());
}

TEST_F(TranscriptEditingTest, MergingAbsorbsTheNextSegment) {
    state.mergeTranscriptSegmentWithNext(id, "a");
    ASSERT_EQ(segments().size(), 3u);
    EXPECT_EQ(segments()[0].text, "one two three untimed words");
    EXPECT_EQ(segments()[0].end, 20.0); // the next had no end
    state.mergeTranscriptSegmentWithNext(id, "c");
    EXPECT_EQ(segments()[1].text, "instant open ended");
    EXPECT_EQ(segments()[1].end, 30.0);
    const auto before = segments();
    state.mergeTranscriptSegmentWithNext(id, "c"); // now the last
    EXPECT_EQ(segments(), before);
    EXPECT_EQ(saved(), segments());
}

TEST_F(TranscriptEditingTest, ReviewingRecordsTheCoverage) {
    state.markTranscriptReviewed(id);
    const auto& status = *state.sources()[0].transcriptionStatus;
    EXPECT_EQ(status.kind, TeskTranscriptionStatusKind::reviewed);
    EXPECT_EQ(status.message, "Reviewed by researcher. Coverage 10s-20s; 8 words; 4 segments.");
    EXPECT_EQ(status.segmentCount, 4);
    EXPECT_EQ(status.recognizedSeconds, 10.0);
    EXPECT_EQ(TeskSourceStore::loadIndex(project)[0].transcriptionStatus->message, status.message);

    state.updateTranscript({}, id);
    TeskSource cleared = state.sources()[0];
    cleared.transcriptionStatus.reset();
    state.updateSource(cleared);
    state.markTranscriptReviewed(id); // nothing to review
    EXPECT_FALSE(state.sources()[0].transcriptionStatus);
}

TEST_F(TranscriptEditingTest, MediaNotesStayInTimeOrderAndBlankOnesGo) {
    state.addMediaNote(id, 12.0, "  Laughs  ");
    state.addMediaNote(id, 3.0, "Door closes");
    state.addMediaNote(id, 12.0, "Pause");
    state.addMediaNote(id, 1.0, "   ");
    auto notes = state.sources()[0].mediaNotes;
    ASSERT_EQ(notes.size(), 3u);
    EXPECT_EQ(notes[0].text, "Door closes");
    EXPECT_EQ(notes[1].text, "Laughs");
    EXPECT_EQ(notes[2].text, "Pause");

    state.updateMediaNote(id, notes[1].id, " Laughs loudly ");
    EXPECT_EQ(state.sources()[0].mediaNotes[1].text, "Laughs loudly");
    EXPECT_EQ(state.sources()[0].mediaNotes[1].createdAt, notes[1].createdAt);
    state.updateMediaNote(id, notes[0].id, "  ");
    state.deleteMediaNote(id, notes[2].id);
    ASSERT_EQ(state.sources()[0].mediaNotes.size(), 1u);
    ASSERT_EQ(TeskSourceStore::loadIndex(project)[0].mediaNotes.size(), 1u);
    EXPECT_EQ(TeskSourceStore::loadIndex(project)[0].mediaNotes[0].text, "Laughs loudly");
}

TEST(TranscriptRowEditingTest, ASplitIsProposedAtTheMiddleWord) {
    using MibrelTranscriptRowEditing::suggestedSplit;
    using Halves = std::pair<std::string, std::string>;
    EXPECT_EQ(suggestedSplit("one two three"), Halves("one", "two three"));
    EXPECT_EQ(suggestedSplit("one  two   three four"), Halves("one two", "three four"));
    EXPECT_EQ(suggestedSplit("one"), Halves("one", ""));
    EXPECT_EQ(suggestedSplit(" one "), Halves(" one ", ""));
}

// Evidence on the next segment would lose its segment; evidence on this one keeps it.
TEST_F(TranscriptEditingTest, MergingIsOfferedUnlessTheNextSegmentHoldsEvidence) {
    using MibrelTranscriptRowEditing::mergeWithNext;
    MibrelWorkspaceState workspace;
    workspace.bind(project);
    workspace.addCode("Workload", "");
    const Uuid code = workspace.workspace().codes[0].id;
    workspace.addApplication(TeskResponseRef{id, "a", std::nullopt, std::nullopt}, code, "one two", "");
    const auto& transcript = state.transcript(id);
    const MibrelTranscriptRowEditing::MergeAvailability offered{true, "Merge with next segment"};
    EXPECT_EQ(mergeWithNext(workspace, id, "a", transcript), offered);
    EXPECT_EQ(mergeWithNext(workspace, id, "d", transcript), offered);
    workspace.addApplication(TeskResponseRef{id, "b", std::nullopt, std::nullopt}, code, "untimed", "");
    EXPECT_EQ(mergeWithNext(workspace, id, "a", transcript),
              (MibrelTranscriptRowEditing::MergeAvailability{
                  false, "Next segment has coded evidence; remove or move codes before merging."}));
    EXPECT_EQ(MibrelTranscriptRowEditing::nextSegment("c", transcript)->id, "d");
    EXPECT_FALSE(MibrelTranscriptRowEditing::nextSegment("d", transcript));
    EXPECT_FALSE(MibrelTranscriptRowEditing::nextSegment("zz", transcript));
}

} // namespace
} // namespace mibrel
