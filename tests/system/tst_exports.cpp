#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSet>
#include <QTest>

// What the built library shows is what hosts may rely on, and all that can collide with their own
// symbols. The file is looked at with the tools of the tool chain; it is not loaded.

namespace {

const char* const entry_points[] = {"create_drvlib", "drv_version"};

const char* const classes[] = {
    "DrvBase",          "DrvEthernet",           "DrvInterface",
    "DrvSerial",        "DriverBasic",           "ProtocolBasic",
    "PropertyTovikIot", "PropertyTovikIotGroup", "PropertyTovikIotDataItem",
#ifndef TOVIK_HAS_QEXTSERIALPORT
    "QextSerialPort",
#endif
};

const char* const functions[] = {
    "traffic::setListener(DrvBase*, TrafficListener*)",
    "traffic::listenerOf(DrvBase const&)",
    "Traffic::Traffic(Traffic::Kind, QByteArray const&, int, QString const&)",
    "result_code::textOf(int, result_code::Words const*)",
    "TovikIotWarningMsg(QString, QString)",
    "operator<<(QDataStream&, PropertyTovikIot const&)",
    "operator>>(QDataStream&, PropertyTovikIot&)",
    "operator<<(QDataStream&, PropertyTovikIotGroup const&)",
    "operator>>(QDataStream&, PropertyTovikIotGroup&)",
    "operator<<(QDataStream&, PropertyTovikIotDataItem const&)",
    "operator>>(QDataStream&, PropertyTovikIotDataItem&)",
};

// Members without the class's name; the constructors and destructors stand with it.
const char* const record_members[] = {
    "Initial()",
    "RenewAllmemeber(%1 const&)",
    "operator=(%1 const&)",
    "operator==(%1 const&)",
    "operator!=(%1 const&)",
    "%1()",
    "%1(%1 const&)",
};

const char* const object_members[] = {
    "staticMetaObject",
    "metaObject() const",
    "qt_metacast(char const*)",
    "qt_metacall(QMetaObject::Call, int, void**)",
    "~%1()",
};

const char* const other_members[] = {
    "PropertyTovikIot::~PropertyTovikIot()",
    "ProtocolBasic::~ProtocolBasic()",
    "ProtocolBasic::hostByteOrder()",
    "ProtocolBasic::byteOrderChange(unsigned short, int)",
    "ProtocolBasic::byteOrderChange(unsigned int, int)",
    "ProtocolBasic::ascii2Hex(char)",
    "ProtocolBasic::ascii2Hex(char*, int)",
    "ProtocolBasic::hex2Ascii(char)",
    "ProtocolBasic::hex2Ascii(char*, int)",
    "ProtocolBasic::array2Number(QByteArray const&, int, int)",
    "ProtocolBasic::addNumber(QByteArray&, unsigned char, int)",
    "ProtocolBasic::addNumber(QByteArray&, unsigned short, int, int)",
    "ProtocolBasic::addNumber(QByteArray&, unsigned int, int, int)",
    "ProtocolBasic::number2Str(int, int, int)",
    "ProtocolBasic::number2Str(unsigned int, int, int)",
    "ProtocolBasic::str2Number(QByteArray const&, int)",
    "ProtocolBasic::digitBaseTransform(int, int, int)",
    "ProtocolBasic::composeDataArea(QByteArray*, char*, int, int, int, int)",
    "ProtocolBasic::addArray(QByteArray&, char const*, int, int, int, int)",
    "ProtocolBasic::extractArray(QByteArray&, char const*, int, int, int, int)",
    "ProtocolBasic::extractDataArea(char*, QByteArray*, int, int, int, int, int)",
    "DriverBasic::DriverBasic(QString, DrvSerial*, DrvEthernet*)",
    "DriverBasic::RunTransparentRequest(QByteArray const&)",
    "DriverBasic::doCmdSM(E_CMD_DIR, QString, int, int, QByteArray*, int, int, int)",
    "DriverBasic::doCmdSM_Offline(E_CMD_DIR, QString, int, int, QByteArray*, int, int, int)",
    "DriverBasic::GetCmdCode(int, QString const&)",
    "DriverBasic::GetOffLineRawData(int)",
    "DriverBasic::recv_abnormal_handler(QByteArray*)",
    "DriverBasic::request_send_wait(int, int, int*)",
    "DriverBasic::UpdateSerialParameter()",
    ("DriverBasic::SlotSetValuesByteArray(QString, QString, int, QByteArray const&, "
     "QSharedPointer<AddrData>)"),
    "DriverBasic::SlotGetValuesByteArray(QString, QString, int, QSharedPointer<AddrData>)",
    "DriverBasic::SlotUpdateDrvSerial()",
    "DriverBasic::SlotUpdateDrvEthernet()",
    // Protected, for derived drivers.
    "DriverBasic::stopRequested() const",
    "DriverBasic::waitForLinkInput(int)",
    "DriverBasic::pauseThread(int)",
    "DriverBasic::waitForBytes(int, int*)",
    "DriverBasic::waitForLine(QByteArray const&, int*)",
    "DriverBasic::isLinkLost() const",
    "DriverBasic::takeInput()",
    "DriverBasic::setTrafficListener(TrafficListener*)",
    "DrvBase::DrvBase()",
    "DrvBase::~DrvBase()",
    "DrvBase::GetDriverSpecificData(QString const&)",
    "DrvEthernet::DrvEthernet(QObject*)",
    "DrvEthernet::EmitNotifyBeforeRelease()",
    "non-virtual thunk to DrvEthernet::~DrvEthernet()",
    "DrvSerial::DrvSerial(QObject*)",
    "DrvSerial::DrvSerial(QString const&, QObject*)",
    "non-virtual thunk to DrvSerial::~DrvSerial()",
    "DrvInterface::DrvInterface(QObject*)",
    "DrvInterface::IsTransparentModeSupported()",
    "DrvInterface::RunTransparentRequest(QByteArray const&)",
    "DrvInterface::SigResponse(QString, QString, QByteArray, int)",
    "DrvInterface::SigEventResponse(QString, QMap<QString, QByteArray>, int)",
    ("DrvInterface::SigSetValuesByteArray(QString, QString, int, QByteArray const&, "
     "QSharedPointer<AddrData>)"),
    "DrvInterface::SigGetValuesByteArray(QString, QString, int, QSharedPointer<AddrData>)",
    "DrvInterface::SigUpdateDrvSerial()",
    "DrvInterface::SigUpdateDrvEthernet()",
    "DrvInterface::SigGetValuesByteArrayMix(QString, QString, int, QList<DataElementGroup>)",
    "DrvInterface::SigTovikResponse(unsigned char, QByteArray const&, int)",
    "DrvInterface::SigTovikInternalCmd(unsigned char, int, unsigned short, QByteArray const&)",
    "DrvInterface::SigTransparentResponse(QByteArray const&, int)",
};

#ifndef TOVIK_HAS_QEXTSERIALPORT
const char* const serial_port_members[] = {
    "QextSerialPort(QextSerialPort::QueryMode, QObject*)",
    "QextSerialPort(QString const&, QextSerialPort::QueryMode, QObject*)",
    "QextSerialPort(PortSettings const&, QextSerialPort::QueryMode, QObject*)",
    "QextSerialPort(QString const&, PortSettings const&, QextSerialPort::QueryMode, QObject*)",
    "portName() const",
    "queryMode() const",
    "baudRate() const",
    "dataBits() const",
    "parity() const",
    "stopBits() const",
    "flowControl() const",
    "open(QFlags<QIODevice::OpenModeFlag>)",
    "close()",
    "isSequential() const",
    "flush()",
    "size() const",
    "bytesAvailable() const",
    "bytesToWrite() const",
    "canReadLine() const",
    "waitForReadyRead(int)",
    "waitForBytesWritten(int)",
    "lastError() const",
    "errorString()",
    "setPortName(QString const&)",
    "setQueryMode(QextSerialPort::QueryMode)",
    "setBaudRate(BaudRateType)",
    "setDataBits(DataBitsType)",
    "setParity(ParityType)",
    "setStopBits(StopBitsType)",
    "setFlowControl(FlowType)",
    "setTimeout(long)",
    "setDtr(bool)",
    "setRts(bool)",
    "readData(char*, long long)",
    "writeData(char const*, long long)",
    // Private, but members: the list of exports names whole classes.
    "initialise()",
    "applySettings()",
    "bytesInKernel() const",
    "onErrorOccurred()",
    "onHangUp()",
    "onReadyRead()",
};
#endif

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

QString memberOf(const char* name, const char* member)
{
    return latin1(name) + latin1("::") + latin1(member).replace(latin1("%1"), latin1(name));
}

bool isRecord(const char* name)
{
    return latin1(name).startsWith(latin1("Property"));
}

bool isObject(const char* name)
{
    return !isRecord(name) && qstrcmp(name, "DrvBase") != 0 && qstrcmp(name, "ProtocolBasic") != 0;
}

QSet<QString> expectedNames()
{
    QSet<QString> names;
    for (const char* name : entry_points)
        names.insert(latin1(name));
    for (const char* name : functions)
        names.insert(latin1(name));
    for (const char* name : other_members)
        names.insert(latin1(name));
    for (const char* name : classes) {
        for (const char* table : {"vtable for ", "typeinfo for ", "typeinfo name for "})
            names.insert(latin1(table) + latin1(name));
        for (const char* member : record_members) {
            if (isRecord(name))
                names.insert(memberOf(name, member));
        }
        for (const char* member : object_members) {
            if (isObject(name))
                names.insert(memberOf(name, member));
        }
    }
#ifndef TOVIK_HAS_QEXTSERIALPORT
    for (const char* member : serial_port_members)
        names.insert(memberOf("QextSerialPort", member));
#endif
    return names;
}

/// What \a program prints about the library, in lines; none if it fails.
QStringList linesOf(const char* program, const QStringList& options)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(latin1(program), options + QStringList(QFile::decodeName(TOVIK_LIBRARY)));
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        return QStringList();
    const QString output = QString::fromLocal8Bit(process.readAllStandardOutput());
    return output.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

/// The exported names with what stands before them: address, size, kind.
QMap<QString, QStringList> exported()
{
    QMap<QString, QStringList> names;
    for (const QString& line : linesOf("nm", {latin1("-DSC"), latin1("--defined-only")})) {
        const QString name = line.section(QLatin1Char(' '), 3);
        names.insert(name, line.section(QLatin1Char(' '), 0, 2).split(QLatin1Char(' ')));
    }
    return names;
}

QStringList sorted(const QSet<QString>& set)
{
    QStringList list = set.values();
    list.sort();
    return list;
}

} // namespace

class TestExports : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exportsAreExactlyThese();
    void virtualsOfPlainClasses_data();
    void virtualsOfPlainClasses();
    void fileNames();
    void dynamicSection_data();
    void dynamicSection();
    void nothingIsUndefined();
};

void TestExports::exportsAreExactlyThese()
{
    const QStringList keys = exported().keys();
    const QSet<QString> found(keys.begin(), keys.end());
    QVERIFY(!found.isEmpty());
    QCOMPARE(sorted(expectedNames() - found), QStringList());
    QCOMPARE(sorted(found - expectedNames()), QStringList());
}

void TestExports::virtualsOfPlainClasses_data()
{
    QTest::addColumn<int>("virtuals");
    QTest::newRow("PropertyTovikIot") << 1; // Initial
    QTest::newRow("PropertyTovikIotGroup") << 1;
    QTest::newRow("PropertyTovikIotDataItem") << 1;
    QTest::newRow("ProtocolBasic") << 2; // the destructor takes two places
    QTest::newRow("DrvBase") << 2;
}

void TestExports::virtualsOfPlainClasses()
{
    QFETCH(int, virtuals);
    const QString table = latin1("vtable for ") + latin1(QTest::currentDataTag());
    QVERIFY(exported().contains(table));
    const int size = exported().value(table).at(1).toInt(nullptr, 16);
    // Two words stand before the functions: the offset to the top, and the type.
    QCOMPARE(size / int(sizeof(void*)) - 2, virtuals);
}

void TestExports::fileNames()
{
    const QFileInfo file(QFile::decodeName(TOVIK_LIBRARY));
    QCOMPARE(file.fileName(), latin1("libtovik_iot.so.1.6.83"));
    for (const char* name : {"libtovik_iot.so.1", "libtovik_iot.so"}) {
        const QFileInfo link(file.dir(), latin1(name));
        QVERIFY(link.isSymLink());
        QCOMPARE(link.canonicalFilePath(), file.canonicalFilePath());
    }
}

void TestExports::dynamicSection_data()
{
    QTest::addColumn<QString>("tag");
    QTest::addColumn<QString>("value");
    QTest::newRow("the name by which it is linked")
        << latin1("(SONAME)") << latin1("[libtovik_iot.so.1]");
    // Qt keeps functions of the library: it must stay mapped.
    QTest::newRow("never unloaded") << latin1("(FLAGS_1)") << latin1("NODELETE");
    QTest::newRow("needs Qt's network") << latin1("(NEEDED)") << latin1("[libQt5Network.so.5]");
}

void TestExports::dynamicSection()
{
    QFETCH(QString, tag);
    QFETCH(QString, value);
    const QStringList lines = linesOf("readelf", {latin1("-dW")}).filter(tag);
    QVERIFY(!lines.isEmpty());
    QCOMPARE(lines.filter(value).size(), 1);
}

void TestExports::nothingIsUndefined()
{
#ifdef TOVIK_OTHER_PROCESSOR
    QSKIP("ldd loads the library, and this machine has another processor");
#endif
    const QStringList lines = linesOf("ldd", {latin1("-r")});
    QVERIFY(!lines.filter(latin1("libQt5Core")).isEmpty());
    QCOMPARE(lines.filter(latin1("undefined symbol")), QStringList());
    QCOMPARE(lines.filter(latin1("not found")), QStringList());
}

QTEST_GUILESS_MAIN(TestExports)
#include "tst_exports.moc"
