// What the drive that tests and whole programs are given answers to commands of others
// than ours, as the standard of such drives has it.

#include "support/DiscMaker.h"
#include "support/SgIoAnswers.h"
#include "support/SimulatedDrive.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <scsi/sg.h>

namespace {

class SgIoAnswersTest : public ::testing::Test {
protected:
    struct Answer {
        int status = 0;
        QByteArray sense;
        QByteArray data; ///< what came of it
        int key() const { return sense.size() > 2 ? sense[2] & 0x0F : 0; }
        int code() const { return sense.size() > 12 ? sense[12] : 0; }
    };

    SgIoAnswersTest()
    {
        drive.audio = makeAudio(900, 3);
        drive.tracks = {{0}, {300, true}, {600}};
        drive.refusesData = true;
    }

    Answer send(const QByteArray& hexCommand, int room = 0)
    {
        QByteArray command = QByteArray::fromHex(hexCommand);
        QByteArray data(room, '\0');
        QByteArray sense(32, '\0');
        sg_io_hdr header{};
        header.interface_id = 'S';
        header.cmd_len = static_cast<unsigned char>(command.size());
        header.cmdp = reinterpret_cast<unsigned char*>(command.data());
        header.mx_sb_len = static_cast<unsigned char>(sense.size());
        header.sbp = reinterpret_cast<unsigned char*>(sense.data());
        header.dxfer_len = static_cast<unsigned>(room);
        header.dxferp = data.data();
        answers.answer(header);
        return {header.status, sense.left(header.sb_len_wr), data.left(room - header.resid)};
    }

    QByteArray sector(int lba) const { return drive.audio.mid(qsizetype{lba} * 2352, 2352); }

    SimulatedDrive drive;
    std::unique_ptr<DriveDevice> device = drive.open(drive.letter);
    SgIoAnswers answers{*device};
};

} // namespace

TEST_F(SgIoAnswersTest, AnUnknownCommandIsAnIllegalRequest)
{
    for (const char* command :
         {"28000000000000000100", "D80000000000000000010000", "A80000000000000000010000"}) {
        const Answer answer = send(command, 2352);
        EXPECT_EQ(answer.status, 2) << command;
        EXPECT_EQ(answer.key(), 5) << command;
        EXPECT_EQ(answer.code(), 0x20) << command;
        EXPECT_TRUE(answer.data.isEmpty()) << command;
    }
}

TEST_F(SgIoAnswersTest, AFieldThatCannotBeServedIsAnIllegalRequest)
{
    // Mode 1 sectors; C2 with the block's own byte; a sub-channel; the table in its raw form.
    for (const char* command : {"BE0800000000000001100000", "BE0400000000000001140000",
                                "BE0400000000000001100100", "43000200000000032400"}) {
        const Answer answer = send(command, 2646);
        EXPECT_EQ(answer.key(), 5) << command;
        EXPECT_EQ(answer.code(), 0x24) << command;
    }
}

TEST_F(SgIoAnswersTest, AudioComesHoweverItIsAskedFor)
{
    EXPECT_EQ(send("BE0000000005000001F80000", 2352).data, sector(5)) << "any type, all fields";
    EXPECT_EQ(send("BE0400000005000001100000", 2352).data, sector(5)) << "audio, user data";
    EXPECT_EQ(send("BE0400000005000002F80000", 4704).data, sector(5) + sector(6));
    const QByteArray withPointers = send("BE0400000005000001120000", 2646).data;
    EXPECT_EQ(withPointers, sector(5) + QByteArray(294, '\0'));
}

TEST_F(SgIoAnswersTest, TheTableComesInBothFormsFromAnyTrackOn)
{
    // Length, first and last track; then a byte, control, number, a byte, and the address.
    EXPECT_EQ(send("43000000000000032400", 804).data.toHex(' '),
              "00 22 01 03 00 10 01 00 00 00 00 00 00 14 02 00 00 00 01 2c "
              "00 10 03 00 00 00 02 58 00 10 aa 00 00 00 03 84");
    EXPECT_EQ(send("43020000000003032400", 804).data.toHex(' '),
              "00 12 01 03 00 10 03 00 00 00 0a 00 00 10 aa 00 00 00 0e 00");
    EXPECT_EQ(send("430000000000AA000C00", 12).data.toHex(' '), "00 0a 01 03 00 10 aa 00 00 00 03 84");
}

TEST_F(SgIoAnswersTest, ItIsAnOpticalDrive)
{
    const QByteArray data = send("120000003800", 56).data;
    ASSERT_EQ(data.size(), 36);
    EXPECT_EQ(data.left(5).toHex(), "058005021f");
    EXPECT_EQ(data.mid(8, 8), drive.vendor);
    EXPECT_EQ(send("000000000000").status, 0);
    EXPECT_EQ(send("BB00FFFFFFFF000000000000").status, 0);
    EXPECT_EQ(send("030000001200", 18).data.toHex(), "700000000000000a0000000000000000000" + QByteArray("0"));
}

TEST_F(SgIoAnswersTest, ItSaysWhatItCanDoWithAudioWhereItSaysAnything)
{
    const char* const capabilities = "5A082A00000000002000";
    EXPECT_EQ(send(capabilities, 32).key(), 5);
    drive.announcedKiB = 256;
    EXPECT_EQ(send(capabilities, 32).data.toHex(' '),
              "00 1a 00 00 00 00 00 00 2a 12 00 00 00 13 00 00 00 00 00 00 01 00 00 00 00 00 00 00");
}
