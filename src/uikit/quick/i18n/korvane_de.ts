<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name></name>
    <!-- Everywhere -->
    <message id="sdk.onemomentplease">
        <source></source>
        <translation>Einen Moment bitte</translation>
    </message>
    <message id="sdk.takinglonger">
        <source></source>
        <translation>Das dauert länger als üblich</translation>
    </message>
    <message id="errors.generic.api">
        <source></source>
        <translation>Bei uns ist etwas schiefgelaufen. Bitte versuchen Sie es noch einmal.</translation>
    </message>
    <message id="enrollment.enableFaceID.reason">
        <source></source>
        <translation>Bestätigen Sie, dass Sie es sind. So brauchen Sie seltener einen Code per SMS.</translation>
    </message>
    <message id="sdk.biometrics.touch">
        <source></source>
        <translation>Berühren Sie den Fingerabdruckleser.</translation>
    </message>
    <message id="sdk.biometrics.away">
        <source></source>
        <translation>Wählen Sie dieses Fenster aus, um den Fingerabdruckleser zu nutzen.</translation>
    </message>
    <message id="sdk.biometrics.cancel">
        <source></source>
        <translation>Abbrechen</translation>
    </message>
    <message id="sdk.biometrics.nomatch">
        <source></source>
        <translation>Das hat nicht gepasst. Bitte versuchen Sie es noch einmal.</translation>
    </message>
    <message id="sdk.biometrics.retry">
        <source></source>
        <translation>Das konnten wir nicht lesen. Bitte versuchen Sie es noch einmal.</translation>
    </message>
    <!-- SMS -->
    <message id="sdk.sms.explain.header">
        <source></source>
        <translation>Sind das wirklich Sie?</translation>
    </message>
    <message id="sdk.sms.explain.subheader">
        <source></source>
        <translation>Zum Schutz Ihrer Karte senden wir einen 6-stelligen Code an Ihre hinterlegte Mobilnummer.</translation>
    </message>
    <message id="sdk.sms.explain.button">
        <source></source>
        <translation>Code senden</translation>
    </message>
    <message id="sdk.sms.code.header">
        <source></source>
        <translation>Code eingeben</translation>
    </message>
    <message id="sdk.sms.code.subheader">
        <source></source>
        <translation>Wir haben einen 6-stelligen Code an Ihr Handy gesendet. Das kann eine Minute dauern.</translation>
    </message>
    <message id="sdk.sms.code.input">
        <source></source>
        <translation>Code aus der SMS</translation>
    </message>
    <message id="sdk.sms.code.expired">
        <source></source>
        <translation>Dieser Code ist abgelaufen. Bitte fordern Sie einen neuen an.</translation>
    </message>
    <message id="sdk.sms.code.incorrect">
        <source></source>
        <translation>Dieser Code stimmt nicht. Prüfen Sie die neueste Nachricht.</translation>
    </message>
    <message id="sdk.sms.code.button">
        <source></source>
        <translation>Weiter</translation>
    </message>
    <message id="sdk.sms.code.resend">
        <source></source>
        <translation>Neuen Code senden</translation>
    </message>
    <message id="sdk.sms.code.resendIn">
        <source></source>
        <translation>Neuen Code senden in %1 s</translation>
    </message>
    <message id="sdk.sms.code.resent">
        <source></source>
        <translation>Ein neuer Code ist unterwegs</translation>
    </message>
    <!-- PIN -->
    <message id="sdk.setpin.header">
        <source></source>
        <translation>PIN wählen</translation>
    </message>
    <message id="sdk.setpin.fourdigits">
        <source></source>
        <translation>Verwenden Sie vier Ziffern</translation>
    </message>
    <message id="sdk.setpin.input">
        <source></source>
        <translation>Neue PIN</translation>
    </message>
    <message id="sdk.setpin.button">
        <source></source>
        <translation>Weiter</translation>
    </message>
    <message id="sdk.setpin.fourdigits.info">
        <source></source>
        <translation>Ihre PIN hat vier Ziffern. Sie brauchen sie, um im Geschäft zu bezahlen und Bargeld abzuheben. Wählen Sie eine, die nur Sie kennen, und geben Sie sie niemandem weiter. Wir werden Sie nie danach fragen.</translation>
    </message>
    <message id="sdk.setpin.fourdigits.info.button">
        <source></source>
        <translation>Verstanden</translation>
    </message>
    <message id="sdk.youcandobetter.header">
        <source></source>
        <translation>Sicherere PIN wählen</translation>
    </message>
    <message id="sdk.youcandobetter.subheader">
        <source></source>
        <translation>Diese PIN ist leicht zu erraten.</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.one">
        <source></source>
        <translation>Keine Folgen (1234, 4321)</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.two">
        <source></source>
        <translation>Nichts Doppeltes (1111, 5990)</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.three">
        <source></source>
        <translation>Vier Ziffern, die nur Sie wählen</translation>
    </message>
    <message id="sdk.youcandobetter.button">
        <source></source>
        <translation>Andere PIN wählen</translation>
    </message>
    <message id="sdk.confirmpin.header">
        <source></source>
        <translation>PIN noch einmal eingeben</translation>
    </message>
    <message id="sdk.confirmpin.input">
        <source></source>
        <translation>Neue PIN, noch einmal</translation>
    </message>
    <message id="sdk.confirmpin.button">
        <source></source>
        <translation>PIN festlegen</translation>
    </message>
    <message id="sdk.error.matchpin.message">
        <source></source>
        <translation>Die PINs stimmen nicht überein. Geben Sie Ihre neue PIN noch einmal ein.</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.header">
        <source></source>
        <translation>Die PINs stimmen nicht überein</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.subheader">
        <source></source>
        <translation>Ihre PIN wurde nicht geändert. Geben Sie beide Male dieselben vier Ziffern ein.</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.button">
        <source></source>
        <translation>Noch einmal versuchen</translation>
    </message>
    <message id="sdk.success.setpin.header">
        <source></source>
        <translation>Ihre PIN ist festgelegt</translation>
    </message>
    <message id="sdk.success.setpin.subheader">
        <source></source>
        <translation>Sie können sie sofort verwenden.</translation>
    </message>
    <message id="sdk.success.setpin.button">
        <source></source>
        <translation>Fertig</translation>
    </message>
    <!-- Activation -->
    <message id="sdk.success.cardActivatedAndSetPin.header">
        <source></source>
        <translation>Ihre Karte ist bereit</translation>
    </message>
    <message id="sdk.success.cardActivatedAndSetPin.subheader">
        <source></source>
        <translation>Sie ist aktiviert und Ihre PIN ist festgelegt. Sie können beides sofort verwenden.</translation>
    </message>
    <message id="sdk.success.cardActivatedAndSetPin.button">
        <source></source>
        <translation>Fertig</translation>
    </message>
    <message id="sdk.cardnotactivated.header">
        <source></source>
        <translation>Karte zuerst aktivieren</translation>
    </message>
    <message id="sdk.cardnotactivated.subheader">
        <source></source>
        <translation>Sie können eine PIN festlegen, sobald Ihre Karte aktiviert ist. Das dauert etwa eine Minute. Halten Sie die Karte bereit.</translation>
    </message>
    <message id="sdk.cardnotactivated.button.one">
        <source></source>
        <translation>Karte aktivieren</translation>
    </message>
    <message id="sdk.cardnotactivated.button.two">
        <source></source>
        <translation>Nicht jetzt</translation>
    </message>
    <message id="sdk.cardactivated.header">
        <source></source>
        <translation>Ihre Karte ist bereits aktiviert</translation>
    </message>
    <message id="sdk.cardactivated.subheader">
        <source></source>
        <translation>Sie müssen nichts weiter tun. Wenn Sie möchten, können Sie eine neue PIN festlegen.</translation>
    </message>
    <message id="sdk.cardactivated.button.one">
        <source></source>
        <translation>Schließen</translation>
    </message>
    <message id="sdk.cardactivated.button.two">
        <source></source>
        <translation>Neue PIN festlegen</translation>
    </message>
    <message id="sdk.cardarrived.header">
        <source></source>
        <translation>Ihre Karte ist da</translation>
    </message>
    <message id="sdk.cardarrived.subheader">
        <source></source>
        <translation>Aktivieren Sie sie und wählen Sie eine PIN, um sie zu nutzen.</translation>
    </message>
    <message id="sdk.cardarrived.start">
        <source></source>
        <translation>Karte aktivieren</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.header">
        <source></source>
        <translation>Letzte vier Ziffern Ihrer Kartennummer</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.input">
        <source></source>
        <translation>Letzte vier Ziffern der Kartennummer</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.button">
        <source></source>
        <translation>Weiter</translation>
    </message>
    <message id="sdk.activatecard.cvv.header">
        <source></source>
        <translation>Sicherheitscode</translation>
    </message>
    <message id="sdk.activatecard.cvv.subheader">
        <source></source>
        <translation>Die drei Ziffern auf der Rückseite Ihrer Karte.</translation>
    </message>
    <message id="sdk.activatecard.cvv.input">
        <source></source>
        <translation>Sicherheitscode</translation>
    </message>
    <message id="sdk.activatecard.cvv.button">
        <source></source>
        <translation>Weiter</translation>
    </message>
    <!-- Card viewer -->
    <message id="sdk.cardtype.physical">
        <source></source>
        <translation>Physische Karte</translation>
    </message>
    <message id="sdk.cardtype.virtual">
        <source></source>
        <translation>Virtuelle Karte</translation>
    </message>
    <message id="sdk.cardtype.wearable">
        <source></source>
        <translation>Wearable-Karte</translation>
    </message>
    <message id="sdk.cardtype.paywallet">
        <source></source>
        <translation>Wallet-Karte</translation>
    </message>
    <message id="sdk.cardtype.none">
        <source></source>
        <translation>Ihre Karte</translation>
    </message>
    <message id="sdk.cardviewer.activateAndSetPin.onCardButton">
        <source></source>
        <translation>Karte aktivieren</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.onCardFrozenMessage.header">
        <source></source>
        <translation>Ihre Karte ist gesperrt</translation>
    </message>
    <message id="sdk.cardviewer.activateAndSetPin.onCardFrozenMessage.subheader">
        <source></source>
        <translation>Entsperren Sie sie, um zu bezahlen oder Bargeld abzuheben.</translation>
    </message>
    <message id="sdk.cardviewer.device.details">
        <source></source>
        <translation>Kartendaten</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cardholderName">
        <source></source>
        <translation>Name auf der Karte</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cardNumber">
        <source></source>
        <translation>Kartennummer</translation>
    </message>
    <message id="sdk.cardviewer.device.details.expirationDate">
        <source></source>
        <translation>Gültig bis</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cvv">
        <source></source>
        <translation>Sicherheitscode</translation>
    </message>
    <message id="sdk.cardviewer.device.details.reveal">
        <source></source>
        <translation>Daten anzeigen</translation>
    </message>
    <message id="sdk.cardviewer.device.details.hide">
        <source></source>
        <translation>Daten verbergen</translation>
    </message>
    <message id="sdk.cardviewer.device.details.missing">
        <source></source>
        <translation>Nicht verfügbar</translation>
    </message>
    <message id="sdk.taptocopy">
        <source></source>
        <translation>Zum Kopieren tippen</translation>
    </message>
    <message id="sdk.copiedToClipboard">
        <source></source>
        <translation>Kopiert</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeMyCard">
        <source></source>
        <translation>Meine Karte vorübergehend sperren</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.header">
        <source></source>
        <translation>Karte sperren?</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.body">
        <source></source>
        <translation>Zahlungen und Bargeldabhebungen werden abgelehnt, bis Sie die Karte entsperren.</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.freezeButton">
        <source></source>
        <translation>Karte sperren</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.cancelButton">
        <source></source>
        <translation>Abbrechen</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.header">
        <source></source>
        <translation>Karte entsperren?</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.body">
        <source></source>
        <translation>Sie können dann wieder bezahlen und Bargeld abheben.</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.unFreezeButton">
        <source></source>
        <translation>Karte entsperren</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.cancelButton">
        <source></source>
        <translation>Abbrechen</translation>
    </message>
    <message id="errors.base64todata.failed">
        <source></source>
        <translation>Wir können das Bild Ihrer Karte gerade nicht anzeigen.</translation>
    </message>
    <message id="errors.datatoimage.failed">
        <source></source>
        <translation>Wir können das Bild Ihrer Karte gerade nicht anzeigen.</translation>
    </message>
    <message id="errors.decodedimgstrempty.failed">
        <source></source>
        <translation>Wir können das Bild Ihrer Karte gerade nicht anzeigen.</translation>
    </message>
    <message id="errors.decodedDisclosureStructIsNil">
        <source></source>
        <translation>Wir können die Bedingungen Ihrer Karte gerade nicht anzeigen.</translation>
    </message>
    <!-- Errors -->
    <message id="sdk.errorPage.tryagain.header">
        <source></source>
        <translation>Das hat nicht geklappt</translation>
    </message>
    <message id="sdk.errorPage.tryagain.subheader.one">
        <source></source>
        <translation>Bei uns ist etwas schiefgelaufen.</translation>
    </message>
    <message id="sdk.errorPage.tryagain.subheader.two">
        <source></source>
        <translation>Bitte versuchen Sie es später erneut.</translation>
    </message>
    <message id="sdk.errorPage.tryagain.button">
        <source></source>
        <translation>Schließen</translation>
    </message>
    <message id="sdk.registration.errorPage.header">
        <source></source>
        <translation>Das hat nicht funktioniert</translation>
    </message>
    <message id="sdk.registration.errorPage.body">
        <source></source>
        <translation>Wir konnten diesen Schritt nicht abschließen. Bitte gehen Sie zurück und versuchen Sie es noch einmal.</translation>
    </message>
    <message id="sdk.registration.errorPage.button">
        <source></source>
        <translation>Zurück</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.header">
        <source></source>
        <translation>Bitte wenden Sie sich an uns</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.subheader.one">
        <source></source>
        <translation>Das können wir in der App nicht für Sie erledigen.</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.subheader.two">
        <source></source>
        <translation>Unser Kundenservice hilft Ihnen gern.</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.button.one">
        <source></source>
        <translation>Schließen</translation>
    </message>
    <!-- Accessibility -->
    <message id="sdk.accessibility.back">
        <source></source>
        <translation>Zurück</translation>
    </message>
    <message id="sdk.accessibility.close">
        <source></source>
        <translation>Schließen</translation>
    </message>
    <message id="sdk.accessibility.busy">
        <source></source>
        <translation>Bitte warten</translation>
    </message>
    <message id="sdk.accessibility.hidden">
        <source></source>
        <translation>Verborgen</translation>
    </message>
    <message id="sdk.accessibility.shown">
        <source></source>
        <translation>Sichtbar</translation>
    </message>
    <message id="sdk.accessibility.passcode">
        <source></source>
        <translation>%1, %2 von %3 Ziffern eingegeben</translation>
    </message>
</context>
</TS>
