#pragma once
#include "TAPIDeclare.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

class LineProvider;
class QPainter;

// The caller-ID line: one line application over a provider. It lists the devices, agrees a
// version with each, keeps the capabilities of the selected one, opens it, tracks at most
// one call, and turns line messages into its seven signals. It never shows anything: a
// failure is a false result with the code kept in LastError.
class cTAPILine : public QObject {
    Q_OBJECT
    Q_PROPERTY(qint32 LowAPI READ LowAPI WRITE setLowAPI)
    Q_PROPERTY(qint32 HiAPI READ HiAPI WRITE setHiAPI)
    Q_PROPERTY(qint32 numLines READ numLines)
    Q_PROPERTY(qint32 CurrentLineID READ CurrentLineID WRITE setCurrentLineID)
    Q_PROPERTY(QString LineName READ LineName)
    Q_PROPERTY(QString ProviderInfo READ ProviderInfo)
    Q_PROPERTY(QString SwitchInfo READ SwitchInfo)
    Q_PROPERTY(qint32 hLine READ hLine)
public:
    // Without a provider the system's one serves. Touches the provider in no way.
    explicit cTAPILine(LineProvider *provider = nullptr, QObject *parent = nullptr);
    // Lets go of the call, closes the line and shuts the application down, in that order.
    ~cTAPILine() override;

    qint32 LowAPI() const { return m_LowAPI; }
    void setLowAPI(qint32 v) { m_LowAPI = v; }
    qint32 HiAPI() const { return m_HiAPI; }
    void setHiAPI(qint32 v) { m_HiAPI = v; }
    qint32 numLines() const { return m_numLines; }
    qint32 CurrentLineID() const { return m_CurrentLineID; }
    // Throws VbError 380 for a device outside 0 .. numLines-1 and keeps the old one.
    void setCurrentLineID(qint32 id);
    QString LineName() const { return m_LineName; }
    QString ProviderInfo() const { return m_ProviderInfo; }
    QString SwitchInfo() const { return m_SwitchInfo; }
    qint32 hLine() const { return qint32(m_hLine); }

    // The device-capability numbers of the selected line.
    qint32 PermanentLineID() const { return qint32(m_PermanentLineID); }
    qint32 StringFormat() const { return qint32(m_StringFormat); }
    qint32 numAddresses() const { return qint32(m_numAddresses); }
    qint32 maxDataRate() const { return qint32(m_maxDataRate); }
    qint32 BearerModes() const { return qint32(m_BearerModes); }
    qint32 AddressModes() const { return qint32(m_AddressModes); }
    qint32 mediamodes() const { return qint32(m_mediamodes); }
    qint32 GenerateToneMaxNumFreq() const { return qint32(m_GenerateToneMaxNumFreq); }
    qint32 GenerateToneModes() const { return qint32(m_GenerateToneModes); }
    qint32 numTerminals() const { return qint32(m_numTerminals); }

    // The per-line reads throw VbError 9 when the arrays do not reach the selected line.
    Q_INVOKABLE qint32 NegotiatedAPIVersion() const;
    Q_INVOKABLE qint32 ExtAPI_ID0() const { return qint32(extensionID().dwExtensionID0); }
    Q_INVOKABLE qint32 ExtAPI_ID1() const { return qint32(extensionID().dwExtensionID1); }
    Q_INVOKABLE qint32 ExtAPI_ID2() const { return qint32(extensionID().dwExtensionID2); }
    Q_INVOKABLE qint32 ExtAPI_ID3() const { return qint32(extensionID().dwExtensionID3); }

    // The last failure code; reading it clears it.
    Q_INVOKABLE qint32 LastError();
    Q_INVOKABLE QString ErrorString(qint64 code) const { return LineErrorText(code); }
    Q_INVOKABLE QString GetID(qint32 select, const QString &deviceClass);
    Q_INVOKABLE bool Create();
    Q_INVOKABLE bool LineSupportsVoiceCalls() const;
    Q_INVOKABLE bool OpenLine(qint32 privileges, qint32 mediaModes);
    Q_INVOKABLE bool MakeCallAsynch(const QString &number);
    Q_INVOKABLE bool DropCallAsynch();
    Q_INVOKABLE bool CloseLine();
    // owner is narrowed to a 16-bit number: a larger one throws the overflow error.
    Q_INVOKABLE bool ConfigDialog(qint64 owner, const QString &deviceClass);
    Q_INVOKABLE bool DialingPropertiesDialog(qint64 owner, const QString &address);
    bool PaintDevIcon(QPainter *context, int x, int y, int width, int height);

    // The bookkeeping behind the handles, for whoever needs to look (the settings window, tests).
    quint32 lineAppHandle() const { return m_hLineApp; }
    quint32 callHandle() const { return m_hCall; }
    qint32 MaxNegotiatedAPI() const { return qint32(m_MaxNegotiatedAPI); }

    // The text of a variable part of a line structure. A NUL as the second character marks
    // wide text with a leading part, and the text then starts at the ninth character.
    static QString ExtractText(const QByteArray &buffer, quint32 offset, quint32 size);

signals:
    void MakeCallResult(qint32 result);
    void DropCallResult(qint32 result);
    void Connected();
    void Idle();
    void Disconnected();
    void LineClose();
    void InfoCallerID(const QString &callerNumber);

private:
    friend void LineCallback(quint32, quint32, quintptr, quint32, quint32, quint32);
    void DispatchLineMessage(quint32 hDevice, quint32 dwMsg, quint32 dwParam1, quint32 dwParam2, quint32 dwParam3);
    void OnCallState(quint32 hDevice, quint32 state);
    void OnCallInfo(quint32 infoState);
    void ReadLineCaps();
    void ReadAddressCaps();
    const Tapi::LINEEXTENSIONID &extensionID() const;
    int lineIndex() const;

    QPointer<LineProvider> m_provider;
    quintptr m_identity = 0;

    quint32 m_hLineApp = 0;
    QList<quint32> m_APIVersions;
    QList<Tapi::LINEEXTENSIONID> m_ExtensionIDs;
    quint32 m_MaxNegotiatedAPI = 0;
    qint32 m_LowAPI = 0x10003;
    qint32 m_HiAPI = 0x30000;
    qint32 m_LastError = 0;
    qint32 m_numLines = 0;
    qint32 m_CurrentLineID = 0;
    Tapi::LINEDEVCAPS m_DevCaps;
    Tapi::LINEADDRESSCAPS m_AddressCaps;
    QString m_LineName, m_ProviderInfo, m_SwitchInfo;
    quint32 m_PermanentLineID = 0, m_StringFormat = 0, m_numAddresses = 0, m_maxDataRate = 0, m_BearerModes = 0,
            m_AddressModes = 0, m_mediamodes = 0, m_GenerateToneMaxNumFreq = 0, m_GenerateToneModes = 0,
            m_numTerminals = 0;
    quint32 m_hLine = 0;
    quint32 m_hCall = 0;
    qint32 m_MakeCallRequest = 0;
    qint32 m_DropCallRequest = 0;
};

// The caller-ID devices for the settings window, in the order of the line's device numbers:
// a line object is initialised (with the older version range when the first try fails) and
// every device whose version was agreed is listed with its number and name.
struct LineDevice {
    int number = 0;
    QString name;
};
QList<LineDevice> ListLineDevices(cTAPILine &line);
