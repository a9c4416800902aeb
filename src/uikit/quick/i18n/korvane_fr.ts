<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
<context>
    <name></name>
    <!-- Everywhere -->
    <message id="sdk.onemomentplease">
        <source></source>
        <translation>Un instant, s’il vous plaît</translation>
    </message>
    <message id="sdk.takinglonger">
        <source></source>
        <translation>Cela prend plus de temps que d’habitude</translation>
    </message>
    <message id="errors.generic.api">
        <source></source>
        <translation>Un problème est survenu chez nous. Veuillez réessayer.</translation>
    </message>
    <message id="enrollment.enableFaceID.reason">
        <source></source>
        <translation>Confirmez votre identité pour recevoir moins de codes par SMS.</translation>
    </message>
    <message id="sdk.biometrics.touch">
        <source></source>
        <translation>Touchez le lecteur d’empreintes.</translation>
    </message>
    <message id="sdk.biometrics.away">
        <source></source>
        <translation>Sélectionnez cette fenêtre pour utiliser le lecteur d’empreintes.</translation>
    </message>
    <message id="sdk.biometrics.cancel">
        <source></source>
        <translation>Annuler</translation>
    </message>
    <message id="sdk.biometrics.nomatch">
        <source></source>
        <translation>Empreinte non reconnue. Veuillez réessayer.</translation>
    </message>
    <message id="sdk.biometrics.retry">
        <source></source>
        <translation>Lecture impossible. Veuillez réessayer.</translation>
    </message>
    <!-- SMS -->
    <message id="sdk.sms.explain.header">
        <source></source>
        <translation>Vérifions que c’est bien vous</translation>
    </message>
    <message id="sdk.sms.explain.subheader">
        <source></source>
        <translation>Pour protéger votre carte, nous enverrons un code à 6 chiffres au numéro de mobile que nous avons pour vous.</translation>
    </message>
    <message id="sdk.sms.explain.button">
        <source></source>
        <translation>Envoyer le code</translation>
    </message>
    <message id="sdk.sms.code.header">
        <source></source>
        <translation>Saisissez le code</translation>
    </message>
    <message id="sdk.sms.code.subheader">
        <source></source>
        <translation>Nous avons envoyé un code à 6 chiffres sur votre mobile. Cela peut prendre une minute.</translation>
    </message>
    <message id="sdk.sms.code.input">
        <source></source>
        <translation>Code reçu par SMS</translation>
    </message>
    <message id="sdk.sms.code.expired">
        <source></source>
        <translation>Ce code a expiré. Veuillez en demander un nouveau.</translation>
    </message>
    <message id="sdk.sms.code.incorrect">
        <source></source>
        <translation>Ce code n’est pas correct. Vérifiez le dernier message et réessayez.</translation>
    </message>
    <message id="sdk.sms.code.button">
        <source></source>
        <translation>Continuer</translation>
    </message>
    <message id="sdk.sms.code.resend">
        <source></source>
        <translation>Renvoyer un code</translation>
    </message>
    <message id="sdk.sms.code.resendIn">
        <source></source>
        <translation>Renvoyer un code dans %1 s</translation>
    </message>
    <message id="sdk.sms.code.resent">
        <source></source>
        <translation>Un nouveau code est en route</translation>
    </message>
    <!-- PIN -->
    <message id="sdk.setpin.header">
        <source></source>
        <translation>Choisissez un code PIN</translation>
    </message>
    <message id="sdk.setpin.fourdigits">
        <source></source>
        <translation>Utilisez quatre chiffres</translation>
    </message>
    <message id="sdk.setpin.input">
        <source></source>
        <translation>Nouveau code PIN</translation>
    </message>
    <message id="sdk.setpin.button">
        <source></source>
        <translation>Continuer</translation>
    </message>
    <message id="sdk.setpin.fourdigits.info">
        <source></source>
        <translation>Votre code PIN comporte quatre chiffres. Il vous servira à payer en magasin et à retirer des espèces. Choisissez un code que vous seul connaissez et ne le communiquez à personne. Nous ne vous le demanderons jamais.</translation>
    </message>
    <message id="sdk.setpin.fourdigits.info.button">
        <source></source>
        <translation>J’ai compris</translation>
    </message>
    <message id="sdk.youcandobetter.header">
        <source></source>
        <translation>Code PIN trop simple</translation>
    </message>
    <message id="sdk.youcandobetter.subheader">
        <source></source>
        <translation>Ce code PIN est facile à deviner.</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.one">
        <source></source>
        <translation>Pas de suites (1234, 4321)</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.two">
        <source></source>
        <translation>Pas de doublons (1111, 5990)</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.three">
        <source></source>
        <translation>Quatre chiffres connus de vous seul</translation>
    </message>
    <message id="sdk.youcandobetter.button">
        <source></source>
        <translation>Choisir un autre code PIN</translation>
    </message>
    <message id="sdk.confirmpin.header">
        <source></source>
        <translation>Saisissez à nouveau votre code PIN</translation>
    </message>
    <message id="sdk.confirmpin.input">
        <source></source>
        <translation>Nouveau code PIN, confirmation</translation>
    </message>
    <message id="sdk.confirmpin.button">
        <source></source>
        <translation>Définir le code PIN</translation>
    </message>
    <message id="sdk.error.matchpin.message">
        <source></source>
        <translation>Les codes PIN ne correspondent pas. Saisissez à nouveau votre nouveau code PIN.</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.header">
        <source></source>
        <translation>Les codes PIN ne correspondent pas</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.subheader">
        <source></source>
        <translation>Votre code PIN n’a pas été modifié. Saisissez les mêmes quatre chiffres les deux fois.</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.button">
        <source></source>
        <translation>Réessayer</translation>
    </message>
    <message id="sdk.success.setpin.header">
        <source></source>
        <translation>Votre code PIN est défini</translation>
    </message>
    <message id="sdk.success.setpin.subheader">
        <source></source>
        <translation>Vous pouvez l’utiliser dès maintenant.</translation>
    </message>
    <message id="sdk.success.setpin.button">
        <source></source>
        <translation>Terminé</translation>
    </message>
    <!-- Activation -->
    <message id="sdk.success.cardActivatedAndSetPin.header">
        <source></source>
        <translation>Votre carte est prête</translation>
    </message>
    <message id="sdk.success.cardActivatedAndSetPin.subheader">
        <source></source>
        <translation>Elle est activée et votre code PIN est défini. Vous pouvez utiliser les deux dès maintenant.</translation>
    </message>
    <message id="sdk.success.cardActivatedAndSetPin.button">
        <source></source>
        <translation>Terminé</translation>
    </message>
    <message id="sdk.cardnotactivated.header">
        <source></source>
        <translation>Activez d’abord votre carte</translation>
    </message>
    <message id="sdk.cardnotactivated.subheader">
        <source></source>
        <translation>Vous pourrez définir un code PIN une fois votre carte activée. Comptez une minute, carte en main.</translation>
    </message>
    <message id="sdk.cardnotactivated.button.one">
        <source></source>
        <translation>Activer la carte</translation>
    </message>
    <message id="sdk.cardnotactivated.button.two">
        <source></source>
        <translation>Pas maintenant</translation>
    </message>
    <message id="sdk.cardactivated.header">
        <source></source>
        <translation>Votre carte est déjà activée</translation>
    </message>
    <message id="sdk.cardactivated.subheader">
        <source></source>
        <translation>Vous n’avez rien d’autre à faire. Si vous le souhaitez, vous pouvez définir un nouveau code PIN.</translation>
    </message>
    <message id="sdk.cardactivated.button.one">
        <source></source>
        <translation>Fermer</translation>
    </message>
    <message id="sdk.cardactivated.button.two">
        <source></source>
        <translation>Définir un nouveau code PIN</translation>
    </message>
    <message id="sdk.cardarrived.header">
        <source></source>
        <translation>Votre carte est arrivée</translation>
    </message>
    <message id="sdk.cardarrived.subheader">
        <source></source>
        <translation>Activez-la et choisissez un code PIN pour commencer à l’utiliser.</translation>
    </message>
    <message id="sdk.cardarrived.start">
        <source></source>
        <translation>Activer la carte</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.header">
        <source></source>
        <translation>Quatre derniers chiffres de votre numéro de carte</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.input">
        <source></source>
        <translation>Quatre derniers chiffres du numéro de carte</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.button">
        <source></source>
        <translation>Continuer</translation>
    </message>
    <message id="sdk.activatecard.cvv.header">
        <source></source>
        <translation>Code de sécurité</translation>
    </message>
    <message id="sdk.activatecard.cvv.subheader">
        <source></source>
        <translation>Les trois chiffres au dos de votre carte.</translation>
    </message>
    <message id="sdk.activatecard.cvv.input">
        <source></source>
        <translation>Code de sécurité</translation>
    </message>
    <message id="sdk.activatecard.cvv.button">
        <source></source>
        <translation>Continuer</translation>
    </message>
    <!-- Card viewer -->
    <message id="sdk.cardtype.physical">
        <source></source>
        <translation>Carte physique</translation>
    </message>
    <message id="sdk.cardtype.virtual">
        <source></source>
        <translation>Carte virtuelle</translation>
    </message>
    <message id="sdk.cardtype.wearable">
        <source></source>
        <translation>Carte pour objet connecté</translation>
    </message>
    <message id="sdk.cardtype.paywallet">
        <source></source>
        <translation>Carte du portefeuille mobile</translation>
    </message>
    <message id="sdk.cardtype.none">
        <source></source>
        <translation>Votre carte</translation>
    </message>
    <message id="sdk.cardviewer.activateAndSetPin.onCardButton">
        <source></source>
        <translation>Activer la carte</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.onCardFrozenMessage.header">
        <source></source>
        <translation>Votre carte est bloquée</translation>
    </message>
    <message id="sdk.cardviewer.activateAndSetPin.onCardFrozenMessage.subheader">
        <source></source>
        <translation>Débloquez-la pour payer ou retirer des espèces.</translation>
    </message>
    <message id="sdk.cardviewer.device.details">
        <source></source>
        <translation>Détails de la carte</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cardholderName">
        <source></source>
        <translation>Nom sur la carte</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cardNumber">
        <source></source>
        <translation>Numéro de carte</translation>
    </message>
    <message id="sdk.cardviewer.device.details.expirationDate">
        <source></source>
        <translation>Date d’expiration</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cvv">
        <source></source>
        <translation>Code de sécurité</translation>
    </message>
    <message id="sdk.cardviewer.device.details.reveal">
        <source></source>
        <translation>Afficher les détails</translation>
    </message>
    <message id="sdk.cardviewer.device.details.hide">
        <source></source>
        <translation>Masquer les détails</translation>
    </message>
    <message id="sdk.cardviewer.device.details.missing">
        <source></source>
        <translation>Non disponible</translation>
    </message>
    <message id="sdk.taptocopy">
        <source></source>
        <translation>Touchez pour copier</translation>
    </message>
    <message id="sdk.copiedToClipboard">
        <source></source>
        <translation>Copié</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeMyCard">
        <source></source>
        <translation>Bloquer temporairement ma carte</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.header">
        <source></source>
        <translation>Bloquer votre carte ?</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.body">
        <source></source>
        <translation>Les paiements et les retraits d’espèces seront refusés jusqu’à ce que vous la débloquiez.</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.freezeButton">
        <source></source>
        <translation>Bloquer la carte</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.cancelButton">
        <source></source>
        <translation>Annuler</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.header">
        <source></source>
        <translation>Débloquer votre carte ?</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.body">
        <source></source>
        <translation>Vous pourrez de nouveau payer et retirer des espèces.</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.unFreezeButton">
        <source></source>
        <translation>Débloquer la carte</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.cancelButton">
        <source></source>
        <translation>Annuler</translation>
    </message>
    <message id="errors.base64todata.failed">
        <source></source>
        <translation>Nous ne pouvons pas afficher l’image de votre carte pour le moment.</translation>
    </message>
    <message id="errors.datatoimage.failed">
        <source></source>
        <translation>Nous ne pouvons pas afficher l’image de votre carte pour le moment.</translation>
    </message>
    <message id="errors.decodedimgstrempty.failed">
        <source></source>
        <translation>Nous ne pouvons pas afficher l’image de votre carte pour le moment.</translation>
    </message>
    <message id="errors.decodedDisclosureStructIsNil">
        <source></source>
        <translation>Nous ne pouvons pas afficher les conditions de votre carte pour le moment.</translation>
    </message>
    <!-- Errors -->
    <message id="sdk.errorPage.tryagain.header">
        <source></source>
        <translation>Opération non terminée</translation>
    </message>
    <message id="sdk.errorPage.tryagain.subheader.one">
        <source></source>
        <translation>Un problème est survenu chez nous.</translation>
    </message>
    <message id="sdk.errorPage.tryagain.subheader.two">
        <source></source>
        <translation>Veuillez réessayer plus tard.</translation>
    </message>
    <message id="sdk.errorPage.tryagain.button">
        <source></source>
        <translation>Fermer</translation>
    </message>
    <message id="sdk.registration.errorPage.header">
        <source></source>
        <translation>Cela n’a pas fonctionné</translation>
    </message>
    <message id="sdk.registration.errorPage.body">
        <source></source>
        <translation>Nous n’avons pas pu terminer cette étape. Veuillez revenir en arrière et réessayer.</translation>
    </message>
    <message id="sdk.registration.errorPage.button">
        <source></source>
        <translation>Retour</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.header">
        <source></source>
        <translation>Contactez-nous</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.subheader.one">
        <source></source>
        <translation>Nous ne pouvons pas faire cela pour vous dans l’application.</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.subheader.two">
        <source></source>
        <translation>Notre service client est là pour vous aider.</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.button.one">
        <source></source>
        <translation>Fermer</translation>
    </message>
    <!-- Accessibility -->
    <message id="sdk.accessibility.back">
        <source></source>
        <translation>Retour</translation>
    </message>
    <message id="sdk.accessibility.close">
        <source></source>
        <translation>Fermer</translation>
    </message>
    <message id="sdk.accessibility.busy">
        <source></source>
        <translation>Veuillez patienter</translation>
    </message>
    <message id="sdk.accessibility.hidden">
        <source></source>
        <translation>Masqué</translation>
    </message>
    <message id="sdk.accessibility.shown">
        <source></source>
        <translation>Affiché</translation>
    </message>
    <message id="sdk.accessibility.passcode">
        <source></source>
        <translation>%1, chiffres saisis : %2 sur %3</translation>
    </message>
</context>
</TS>
